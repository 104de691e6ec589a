# Most significant byte first.
set(machine s390x)
include(${CMAKE_CURRENT_LIST_DIR}/debian_cross.cmake)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-s390x -L ${CMAKE_SYSROOT})
