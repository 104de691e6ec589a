# What `cmake --install` lays down: the libraries with their headers, CMake package and pkg-config files, the
# tool, licences and documents. Nothing that is installed knows its prefix, so that the tree may be moved.

include(CMakePackageConfigHelpers)

set_target_properties(cvtr2r_headers PROPERTIES EXPORT_NAME headers)
set_target_properties(cvtr2r_static PROPERTIES EXPORT_NAME library)
set_target_properties(cvtr2r_shared PROPERTIES EXPORT_NAME shared)
set_target_properties(cvtr2r_host_archive PROPERTIES EXPORT_NAME host_archive)
set_target_properties(cvtr2r_host PROPERTIES EXPORT_NAME host)
set_target_properties(cvtr2r_pipeline PROPERTIES EXPORT_NAME pipeline)
install(TARGETS cvtr2r_headers cvtr2r_static cvtr2r_shared cvtr2r_host_archive cvtr2r_host cvtr2r_pipeline
        EXPORT cvtr2r
        FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/cvtr2r)

set(packageDir ${CMAKE_INSTALL_LIBDIR}/cmake/cvtr2r)
install(EXPORT cvtr2r NAMESPACE cvtr2r:: FILE cvtr2rConfig.cmake DESTINATION ${packageDir})
write_basic_package_version_file(cvtr2rConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/cvtr2rConfigVersion.cmake DESTINATION ${packageDir})

# Code for gcc's link-time optimisation is of use to the one version of gcc that made it, and stops all others.
if(CMAKE_INTERPROCEDURAL_OPTIMIZATION AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  foreach(archive cvtr2r_static cvtr2r_host_archive cvtr2r_pipeline)
    set(installed "\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}/$<TARGET_FILE_NAME:${archive}>")
    install(CODE "execute_process(COMMAND \"${CMAKE_STRIP}\" -p -D -R .gnu.lto_* -R .gnu.debuglto_* -N __gnu_lto_v1
                                  \"${installed}\" COMMAND_ERROR_IS_FATAL ANY)")
  endforeach()
endif()

file(RELATIVE_PATH fromPkgConfig /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
foreach(module cvtr2r cvtr2r-host cvtr2r-pipeline)
  configure_file(cmake/package/${module}.pc.in ${module}.pc @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${module}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()

install(FILES LICENSE README.md CHANGELOG.md cmake/package/copyright DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs examples DESTINATION ${CMAKE_INSTALL_DOCDIR})
