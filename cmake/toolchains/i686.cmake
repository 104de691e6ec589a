# 32 bits. The processor runs its programs; they need the loader and the libraries of their own tree.
set(machine i686)
include(${CMAKE_CURRENT_LIST_DIR}/debian_cross.cmake)
set(libraries ${CMAKE_SYSROOT}/lib/i386-linux-gnu:${CMAKE_SYSROOT}/usr/lib/i386-linux-gnu)
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_SYSROOT}/lib/ld-linux.so.2 --library-path ${libraries})
