# Cross compilation with MinGW-w64; the presets set BEACON_MACHINE to x86_64 or i686. The win32 thread model has no
# C++11 threads, which this project does not use, and needs no function that Windows 2000 lacks.
set(CMAKE_SYSTEM_NAME Windows)
if(NOT DEFINED BEACON_MACHINE)
    set(BEACON_MACHINE $ENV{BEACON_MACHINE})
endif()
set(ENV{BEACON_MACHINE} ${BEACON_MACHINE}) # compiler checks run this file again, without the cache
set(CMAKE_SYSTEM_PROCESSOR ${BEACON_MACHINE})
set(CMAKE_C_COMPILER ${BEACON_MACHINE}-w64-mingw32-gcc-win32)
set(CMAKE_CXX_COMPILER ${BEACON_MACHINE}-w64-mingw32-g++-win32)
set(CMAKE_RC_COMPILER ${BEACON_MACHINE}-w64-mingw32-windres)
set(CMAKE_FIND_ROOT_PATH /usr/${BEACON_MACHINE}-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
