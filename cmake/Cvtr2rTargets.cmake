# How every target of the project is built: warnings, sanitizers, and what the library's folders may use.

add_library(cvtr2r_options INTERFACE)
target_include_directories(cvtr2r_options INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_options(cvtr2r_options INTERFACE -Wall -Wextra -Wshadow -Wconversion -Wsign-conversion -Wpedantic
                                                $<$<BOOL:${CVTR2R_STRICT}>:-Werror>)
if(CMAKE_SIZEOF_VOID_P EQUAL 4)  # files of 2 GB and more
  target_compile_definitions(cvtr2r_options INTERFACE _FILE_OFFSET_BITS=64)
endif()
if(CVTR2R_SANITIZE)
  # Instrumented by gcc, plain promotions look like changes of sign; the other presets keep the warning.
  target_compile_options(cvtr2r_options INTERFACE -Wno-sign-conversion)
  add_compile_options(-fsanitize=${CVTR2R_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${CVTR2R_SANITIZE})
endif()

# What goes into archives that are installed: ordinary object code beside that of gcc's link-time optimisation,
# since other compilers, and other versions of gcc, can make nothing of the latter.
add_library(cvtr2r_installed_options INTERFACE)
target_link_libraries(cvtr2r_installed_options INTERFACE cvtr2r_options)
if(CMAKE_INTERPROCEDURAL_OPTIMIZATION AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(cvtr2r_installed_options INTERFACE -ffat-lto-objects)
endif()

# A folder of the library: sees include/ and its fellow folders' headers, no exceptions, no run-time types.
function(cvtr2r_folder name)
  add_library(cvtr2r_${name} OBJECT ${ARGN})
  target_link_libraries(cvtr2r_${name} PUBLIC cvtr2r_headers PRIVATE cvtr2r_installed_options)
  target_compile_options(cvtr2r_${name} PRIVATE -fno-exceptions -fno-rtti -fvisibility=hidden)
  set_property(GLOBAL APPEND PROPERTY CVTR2R_FOLDERS cvtr2r_${name})
endfunction()
