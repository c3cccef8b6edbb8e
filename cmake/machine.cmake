# Builds for another machine with Debian's compiler for it, and runs what was built by qemu.
#
# Usage: cmake --toolchain cmake/machine.cmake -DTELEFORM_MACHINE=s390x-linux-gnu ...
#
# TELEFORM_MACHINE is the machine's name as Debian's compilers begin with it.
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES TELEFORM_MACHINE)
string(REGEX MATCH "^[^-]+" processor ${TELEFORM_MACHINE})
string(REPLACE i686 i386 emulated ${processor})

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR ${processor})
set(CMAKE_C_COMPILER ${TELEFORM_MACHINE}-gcc)  # GoogleTest asks for one
set(CMAKE_CXX_COMPILER ${TELEFORM_MACHINE}-g++)
# The library path keeps away a C library for the same machine that the builder has for itself.
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-${emulated} -L /usr/${TELEFORM_MACHINE}
  -E LD_LIBRARY_PATH=/usr/${TELEFORM_MACHINE}/lib)

set(CMAKE_FIND_ROOT_PATH /usr/${TELEFORM_MACHINE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
