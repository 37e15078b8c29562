# SPDX-License-Identifier: MIT
# Cross-compiles for 64-bit Windows with Debian's MinGW-w64. The -posix flavour is the one whose
# standard library has threads.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
# Qt for Windows is found through CMAKE_PREFIX_PATH, Qt's host tools through QT_HOST_PATH.
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)
