# Cross build for 32-bit Windows with the mingw-w64 compilers.
set(CMAKE_SYSTEM_PROCESSOR i686)
set(TARNWICK_MINGW_PREFIX i686-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-common.cmake)
