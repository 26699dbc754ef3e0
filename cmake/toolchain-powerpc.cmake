# 32-bit big-endian: Debian's cross compiler, run in user-mode emulation.

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR ppc)
set(CMAKE_LIBRARY_ARCHITECTURE powerpc-linux-gnu)

set(CMAKE_C_COMPILER /usr/bin/powerpc-linux-gnu-gcc-12)
set(CMAKE_CXX_COMPILER /usr/bin/powerpc-linux-gnu-g++-12)

set(CMAKE_FIND_ROOT_PATH /usr/powerpc-linux-gnu)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_CURRENT_LIST_DIR}/emulate" qemu-ppc -L /usr/powerpc-linux-gnu)
