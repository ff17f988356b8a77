#!/usr/bin/env bash
# Builds tests/cpp/header_check.cpp with one compiler and one standard against
# the built shared library, as a program that includes tarnwick.hpp would be,
# and runs it.
# Arguments: launcher (may be empty), compiler, standard, source, include
# directory, library directory, then extra compiler flags.
set -euo pipefail
launcher=$1 compiler=$2 standard=$3 source=$4 include=$5 libdir=$6
shift 6
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
# Compiled and linked apart, so that a compiler cache can serve the compile.
$launcher "$compiler" -std="$standard" -Wall -Wextra -Wpedantic -Werror "$@" -I"$include" \
  $(pkg-config --cflags gmp) -c "$source" -o "$scratch/header_check.o"
# shellcheck disable=SC2046
"$compiler" "$@" "$scratch/header_check.o" -o "$scratch/header_check" -L"$libdir" -ltarnwick \
  $(pkg-config --libs gmp) -Wl,-rpath,"$libdir"
"$scratch/header_check"
