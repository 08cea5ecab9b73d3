#!/usr/bin/env bash
# consumers.sh BUILD_DIR CC CXX GENERATOR: what a program outside the project sees of an installed sigvex.
set -euo pipefail
build=$1 cc=$2 cxx=$3 generator=$4
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix

cmake --install "$build" --prefix "$prefix" >/dev/null
cp "$here/consumer.c" "$work/consumer.c"
cp "$here/consumer.c" "$work/consumer.cpp"  # the header is both C and C++: so is the program

# The package file that --prefix relocates still names the configured prefix; pkg-config is told the real one.
pc=$(find "$prefix" -name sigvex.pc)
libdir=$(dirname "$(dirname "$pc")")
pkg() { PKG_CONFIG_PATH=$(dirname "$pc") pkg-config --define-variable=prefix="$prefix" \
  --define-variable=libdir="$libdir" --define-variable=includedir="$prefix/include" "$@" sigvex; }
[ "$(pkg --modversion)" = 3.35.6 ]
static=()
[ -e "$libdir/libsigvex.so" ] || static=(--static)
# shellcheck disable=SC2046
"$cc" -std=c99 -pedantic -Wall -Wextra -Werror "$work/consumer.c" -o "$work/from_c" $(pkg --cflags --libs "${static[@]}") -lm
# shellcheck disable=SC2046
"$cxx" -std=c++11 -Wall -Wextra -Werror "$work/consumer.cpp" -o "$work/from_cpp" $(pkg --cflags --libs "${static[@]}")
[ ! -e "$prefix/bin/sigvex" ] || "$prefix/bin/sigvex" --version >/dev/null
LD_LIBRARY_PATH=$libdir "$work/from_c"
LD_LIBRARY_PATH=$libdir "$work/from_cpp"

cat >"$work/CMakeLists.txt" <<'CMAKE'
cmake_minimum_required(VERSION 3.25)
project(consumer LANGUAGES C CXX)
find_package(sigvex 3.35 REQUIRED)
add_executable(from_c consumer.c)
add_executable(from_cpp consumer.cpp)
foreach(program from_c from_cpp)
  target_link_libraries(${program} PRIVATE sigvex::sigvex)
endforeach()
CMAKE
cmake -S "$work" -B "$work/build" -G "$generator" \
  -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_C_COMPILER="$cc" -DCMAKE_CXX_COMPILER="$cxx" >/dev/null
cmake --build "$work/build" >/dev/null
"$work/build/from_c"
"$work/build/from_cpp"
