# Cross build for 64-bit Windows with the mingw-w64 compilers.
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(TARNWICK_MINGW_PREFIX x86_64-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-common.cmake)
