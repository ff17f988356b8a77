#!/usr/bin/env bash
# Installs the built library into a scratch prefix, then builds and runs a C
# program against it the way a user would: pkg-config for the flags, and a
# CMake project through find_package(Tarnwick).
set -euo pipefail
build_dir=$1
program=$2
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

cmake --install "$build_dir" --prefix "$scratch/prefix" > /dev/null
libdir=$(ls -d "$scratch"/prefix/lib*/ | head -n 1)
export PKG_CONFIG_PATH="$libdir/pkgconfig"

cc -std=c99 -Wall -Werror $(pkg-config --cflags tarnwick) "$program" -o "$scratch/with_pkgconfig" $(pkg-config --libs tarnwick)
LD_LIBRARY_PATH="$libdir" "$scratch/with_pkgconfig"

mkdir -p "$scratch/consumer"
cp "$program" "$scratch/consumer/main.c"
cat > "$scratch/consumer/CMakeLists.txt" <<'CMAKE'
cmake_minimum_required(VERSION 3.25)
project(consumer C)
find_package(Tarnwick REQUIRED)
add_executable(consumer main.c)
target_link_libraries(consumer PRIVATE Tarnwick::tarnwick)
CMAKE
cmake -S "$scratch/consumer" -B "$scratch/consumer/build" -G Ninja -DCMAKE_PREFIX_PATH="$scratch/prefix" > /dev/null
cmake --build "$scratch/consumer/build" > /dev/null
LD_LIBRARY_PATH="$libdir" "$scratch/consumer/build/consumer"
# A C++ project that asks for C++14 gets the C++17 tarnwick.hpp needs from the
# package's target.
mkdir -p "$scratch/cxx_consumer"
cat > "$scratch/cxx_consumer/main.cpp" <<'CPP'
#include <tarnwick.hpp>
int main() { return tarnwick::Integer("12") + 30 == 42 ? 0 : 1; }
CPP
cat > "$scratch/cxx_consumer/CMakeLists.txt" <<'CMAKE'
cmake_minimum_required(VERSION 3.25)
project(cxx_consumer CXX)
set(CMAKE_CXX_STANDARD 14)
find_package(Tarnwick REQUIRED)
add_executable(cxx_consumer main.cpp)
target_link_libraries(cxx_consumer PRIVATE Tarnwick::tarnwick)
CMAKE
cmake -S "$scratch/cxx_consumer" -B "$scratch/cxx_consumer/build" -G Ninja -DCMAKE_PREFIX_PATH="$scratch/prefix" > /dev/null
cmake --build "$scratch/cxx_consumer/build" > /dev/null
LD_LIBRARY_PATH="$libdir" "$scratch/cxx_consumer/build/cxx_consumer"
echo "installed library links through pkg-config and find_package"
