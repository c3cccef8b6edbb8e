# Toolchain for another architecture or Windows: cross-compiles with Debian's GCC and runs programs
# in qemu or wine.
#
# Usage: cmake --toolchain cmake/machine.cmake -DTELEFORM_MACHINE=s390x-linux-gnu ...
#
# TELEFORM_MACHINE is the prefix of Debian's cross-compilers for the architecture, or
# x86_64-w64-mingw32 for Windows.
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES TELEFORM_MACHINE)
string(REGEX MATCH "^[^-]+" processor ${TELEFORM_MACHINE})
string(REPLACE i686 i386 emulated ${processor})

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR ${processor})
set(CMAKE_C_COMPILER ${TELEFORM_MACHINE}-gcc)  # GoogleTest enables C
set(CMAKE_CXX_COMPILER ${TELEFORM_MACHINE}-g++)
# The library path hides a C library of that architecture that is installed on the host.
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-${emulated} -L /usr/${TELEFORM_MACHINE}
  -E LD_LIBRARY_PATH=/usr/${TELEFORM_MACHINE}/lib)
if(TELEFORM_MACHINE MATCHES mingw)
  set(CMAKE_SYSTEM_NAME Windows)
  set(CMAKE_C_COMPILER ${TELEFORM_MACHINE}-gcc-posix)
  set(CMAKE_CXX_COMPILER ${TELEFORM_MACHINE}-g++-posix)
  set(CMAKE_CROSSCOMPILING_EMULATOR wine)
endif()

set(CMAKE_FIND_ROOT_PATH /usr/${TELEFORM_MACHINE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
