# 64-bit big-endian: Debian's cross compiler against that architecture's packages,
# which the first configuration unpacks under build/, run in user-mode emulation.

cmake_path(GET CMAKE_CURRENT_LIST_DIR PARENT_PATH tree)
execute_process(COMMAND "${tree}/scripts/s390x-sysroot" COMMAND_ERROR_IS_FATAL ANY)

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR s390x)
set(CMAKE_LIBRARY_ARCHITECTURE s390x-linux-gnu)

set(CMAKE_C_COMPILER /usr/bin/s390x-linux-gnu-gcc-12)
set(CMAKE_CXX_COMPILER /usr/bin/s390x-linux-gnu-g++-12)
set(CMAKE_OBJC_COMPILER /usr/bin/s390x-linux-gnu-gcc-12)
set(CMAKE_OBJCXX_COMPILER /usr/bin/s390x-linux-gnu-g++-12)

set(CMAKE_SYSROOT "${tree}/build/s390x-sysroot")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_CURRENT_LIST_DIR}/emulate" qemu-s390x -L "${CMAKE_SYSROOT}")
