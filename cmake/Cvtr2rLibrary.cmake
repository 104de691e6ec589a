# The library itself, static and shared, from the objects of its folders. The operations of host.h stay
# undefined in both: the program that loads the library brings them.

get_property(folders GLOBAL PROPERTY CVTR2R_FOLDERS)
set(objects)
foreach(folder ${folders})
  list(APPEND objects $<TARGET_OBJECTS:${folder}>)
endforeach()

add_library(cvtr2r_static STATIC ${objects})
set_target_properties(cvtr2r_static PROPERTIES OUTPUT_NAME cvtr2r)
target_link_libraries(cvtr2r_static PUBLIC cvtr2r_headers)

add_library(cvtr2r_shared SHARED ${objects})
set_target_properties(cvtr2r_shared PROPERTIES OUTPUT_NAME cvtr2r VERSION ${PROJECT_VERSION}
                                               SOVERSION ${PROJECT_VERSION_MAJOR} LINKER_LANGUAGE CXX)
target_link_libraries(cvtr2r_shared PUBLIC cvtr2r_headers)
set(exports ${CMAKE_CURRENT_SOURCE_DIR}/cmake/exports.map)
target_link_options(cvtr2r_shared PRIVATE -Wl,--version-script=${exports})
set_target_properties(cvtr2r_shared PROPERTIES LINK_DEPENDS ${exports})

add_library(cvtr2r::library ALIAS cvtr2r_static)
add_library(cvtr2r::shared ALIAS cvtr2r_shared)
