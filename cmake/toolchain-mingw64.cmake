# SPDX-License-Identifier: Apache-2.0
# Cross-compiles for 64-bit Windows with MinGW-w64 (Debian's g++-mingw-w64-x86-64-posix: the POSIX
# threads model, so std::thread and std::mutex work). Programs run under Wine when tests run here.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(VEXA_MINGW_TRIPLET x86_64-w64-mingw32)

set(CMAKE_C_COMPILER ${VEXA_MINGW_TRIPLET}-gcc-posix)
set(CMAKE_CXX_COMPILER ${VEXA_MINGW_TRIPLET}-g++-posix)
set(CMAKE_RC_COMPILER ${VEXA_MINGW_TRIPLET}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${VEXA_MINGW_TRIPLET})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# The compiler's own runtime (libstdc++, libgcc, winpthread) is linked in, so a program is one file.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
