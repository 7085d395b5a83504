# Windows on x86-64, by Debian's g++-mingw-w64-x86-64-posix. Programs hold their
# runtime, so that each is one file; wine runs them where it is installed.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
set(OpenMP_gomp_LIBRARY gomp)
set(ZLIB_LIBRARY /usr/x86_64-w64-mingw32/lib/libz.a)

set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(nlohmann_json_DIR ${CMAKE_CURRENT_LIST_DIR}/windows)

# A drive of its own below the build folder: nothing of the user's is touched,
# no menu entries are made and no packages are asked for.
find_program(PHOTARIUM_WINE wine)
if(PHOTARIUM_WINE)
  set(CMAKE_CROSSCOMPILING_EMULATOR /usr/bin/env
    WINEPREFIX=${CMAKE_BINARY_DIR}/wine
    WINEDEBUG=-all
    WINEDLLOVERRIDES=mscoree,mshtml,winemenubuilder.exe=
    ${PHOTARIUM_WINE})
endif()
