#!/usr/bin/env bash
# check_installed_package.sh <build tree> <cmake> <C compiler> <libdir> <version>
# Installs the build tree, moves what was installed, and lets a C99 program find it there by CMake and by pkg-config.
set -euo pipefail
build=$1 cmake=$2 cc=$3 libdir=$4 version=$5
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/moved

# Both packages are relocatable: they are used elsewhere than where they were installed.
"$cmake" --install "$build" --prefix "$work/first" >"$work/install.log"
mv "$work/first" "$prefix"

echo "Nothing is installed but the header, the library, the program and the two packages"
expected="bin/zor
include/zor_api.h
$libdir/cmake/zor_api/zor_api-config-TYPE.cmake
$libdir/cmake/zor_api/zor_api-config-version.cmake
$libdir/cmake/zor_api/zor_api-config.cmake
$libdir/libzor_api.so
$libdir/libzor_api.so.${version%%.*}
$libdir/libzor_api.so.$version
$libdir/pkgconfig/zor_api.pc"
type='release|debug|relwithdebinfo|minsizerel|noconfig'
installed=$(find "$prefix" ! -type d -printf '%P\n' | sed -E "s/-config-($type)\.cmake/-config-TYPE.cmake/")
diff <(sort <<<"$expected") <(sort <<<"$installed")

echo "The installed program finds its library"
"$prefix/bin/zor" --version >/dev/null

echo "find_package"
"$cmake" -S "$here/consumer" -B "$work/consumer" -DCMAKE_C_COMPILER="$cc" -DCMAKE_PREFIX_PATH="$prefix" \
  -DZOR_VERSION="$version" >"$work/configure.log" || { cat "$work/configure.log"; exit 1; }
"$cmake" --build "$work/consumer" >"$work/build.log" || { cat "$work/build.log"; exit 1; }
"$work/consumer/consumer"

echo "pkg-config"
export PKG_CONFIG_PATH=$prefix/$libdir/pkgconfig
pkg-config --exact-version="$version" zor_api
# shellcheck disable=SC2046  # the flags are words
"$cc" -std=c99 -Wall -Wextra -Wpedantic -Wstrict-prototypes -Werror $(pkg-config --cflags zor_api) \
  "$here/consumer/consumer.c" $(pkg-config --libs zor_api) -o "$work/by_pkg_config"
LD_LIBRARY_PATH=$prefix/$libdir "$work/by_pkg_config"
