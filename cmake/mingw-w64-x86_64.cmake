# Cross-building the command line for 64-bit Windows with Debian's MinGW-w64
# (g++-mingw-w64-x86-64). The posix-threads flavour of the compiler brings
# std::thread and std::mutex; -static leaves no compiler DLL to ship beside
# the program. Tests run under Wine when it is installed.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(KESTRUM_MINGW_PREFIX x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${KESTRUM_MINGW_PREFIX}-gcc-posix)
set(CMAKE_CXX_COMPILER ${KESTRUM_MINGW_PREFIX}-g++-posix)
set(CMAKE_RC_COMPILER ${KESTRUM_MINGW_PREFIX}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${KESTRUM_MINGW_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
# GCC keeps 32-byte vectors on a stack that Windows aligns to 16 bytes only;
# the assembler's unaligned moves keep AVX code from faulting there.
set(CMAKE_C_FLAGS_INIT "-Wa,-muse-unaligned-vector-move")
set(CMAKE_CXX_FLAGS_INIT "-Wa,-muse-unaligned-vector-move")

find_program(KESTRUM_WINE NAMES wine wine64)
if(KESTRUM_WINE)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${KESTRUM_WINE})
endif()
