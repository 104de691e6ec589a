# What `cpack` makes of an installed tree: a Debian package and archives.

set(CPACK_PACKAGE_NAME cvtr2r)
set(CPACK_PACKAGE_CONTACT "The cvtr2r authors <maintainers@cvtr2r.invalid>" CACHE STRING "Maintainer of packages")
set(CPACK_PACKAGE_VENDOR "The cvtr2r authors")
set(CPACK_GENERATOR DEB TGZ)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/package/debian_layout.cmake)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION 
"The command r2r converts images to other depths, palettes, layouts and sizes.
The library serves print, scan, fax, e-paper and indexed-graphics pipelines;
its headers, CMake package and pkg-config files are included.")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
configure_file(cmake/package/shlibs.in shlibs @ONLY)
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_LIST_DIR}/package/triggers ${PROJECT_BINARY_DIR}/shlibs)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_SOURCE_GENERATOR TGZ)
set(CPACK_SOURCE_IGNORE_FILES /build/ /demo-out/ /\\.git/ /\\.gitignore$)
include(CPack)
