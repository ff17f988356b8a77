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

# A CMake project through find_package: name, language, its main source, and
# any further CMake lines.
cmake_consumer() {
  local dir="$scratch/$1"
  mkdir -p "$dir"
  cp "$3" "$dir/$(basename "$3")"
  printf '%s\n' "cmake_minimum_required(VERSION 3.25)" "project($1 $2)" "$4" "find_package(Tarnwick REQUIRED)" \
    "add_executable($1 $(basename "$3"))" "target_link_libraries($1 PRIVATE Tarnwick::tarnwick)" > "$dir/CMakeLists.txt"
  cmake -S "$dir" -B "$dir/build" -G Ninja -DCMAKE_PREFIX_PATH="$scratch/prefix" > /dev/null
  cmake --build "$dir/build" > /dev/null
  LD_LIBRARY_PATH="$libdir" "$dir/build/$1"
}

cp "$program" "$scratch/main.c"
cmake_consumer consumer C "$scratch/main.c" ""
# A C++ project that asks for C++14 gets the C++17 tarnwick.hpp needs from the
# package's target.
cat > "$scratch/main.cpp" <<'CPP'
#include <tarnwick.hpp>
int main() { return tarnwick::Integer("12") + 30 == 42 ? 0 : 1; }
CPP
cmake_consumer cxx_consumer CXX "$scratch/main.cpp" "set(CMAKE_CXX_STANDARD 14)"
echo "installed library links through pkg-config and find_package"
