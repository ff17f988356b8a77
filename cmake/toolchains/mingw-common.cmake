# What both mingw-w64 cross builds share; the toolchain file that includes
# this sets CMAKE_SYSTEM_PROCESSOR and TARNWICK_MINGW_PREFIX first.  The
# compilers of the posix thread model: std::mutex and thread_local need
# winpthreads.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_C_COMPILER ${TARNWICK_MINGW_PREFIX}-gcc-posix)
set(CMAKE_CXX_COMPILER ${TARNWICK_MINGW_PREFIX}-g++-posix)
set(CMAKE_RC_COMPILER ${TARNWICK_MINGW_PREFIX}-windres)
set(CMAKE_DLLTOOL ${TARNWICK_MINGW_PREFIX}-dlltool)
set(CMAKE_FIND_ROOT_PATH /usr/${TARNWICK_MINGW_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
