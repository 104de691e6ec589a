set(CMAKE_CXX_COMPILER clang++)
# The linker that reads what clang writes for link-time optimisation.
set(CMAKE_EXE_LINKER_FLAGS_INIT -fuse-ld=lld)
set(CMAKE_SHARED_LINKER_FLAGS_INIT -fuse-ld=lld)
