# Builds for another processor with Debian's cross compilers.
# PHOTARIUM_PROCESSOR names it: i686 (32 bits) or s390x (big-endian, and char
# has no sign).
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES PHOTARIUM_PROCESSOR)
set(triplet ${PHOTARIUM_PROCESSOR}-linux-gnu)

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR ${PHOTARIUM_PROCESSOR})
set(CMAKE_C_COMPILER ${triplet}-gcc)  # GoogleTest asks for C too
set(CMAKE_CXX_COMPILER ${triplet}-g++)

set(CMAKE_FIND_ROOT_PATH /usr/${triplet})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

if(PHOTARIUM_PROCESSOR STREQUAL i686)
  # The x87 unit computes with 64 bits of mantissa and rounds to double when it
  # stores: results would hang on the compiler's choice of registers.
  set(CMAKE_CXX_FLAGS_INIT "-msse2 -mfpmath=sse")
  # x86-64 runs 32-bit programs by itself; qemu 7.2 hangs where they start a
  # thread.
  set(CMAKE_CROSSCOMPILING_EMULATOR
    /usr/${triplet}/lib/ld-linux.so.2 --library-path /usr/${triplet}/lib)
else()
  set(CMAKE_CROSSCOMPILING_EMULATOR
    qemu-${PHOTARIUM_PROCESSOR} -L /usr/${triplet})
endif()
