#!/bin/sh
# Builds and runs the program with what pkg-config says of an installed library.
set -eu
compiler=$1 prefix=$2 libdir=$3 program=$4
export PKG_CONFIG_PATH="$prefix/$libdir/pkgconfig"
# shellcheck disable=SC2046
"$compiler" -std=c++20 $(pkg-config --cflags photarium) \
  "$(dirname "$0")/main.cpp" -o "$program" \
  $(pkg-config --libs photarium)
LD_LIBRARY_PATH="$prefix/$libdir" "$program"
