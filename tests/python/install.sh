#!/usr/bin/env bash
# Installs the package of Python and the shared libraries into a folder. Where the build has sanitizers, the libraries are
# built once more without: an interpreter cannot load those that have some.
#
# usage: install.sh SOURCES BUILD INSTALLED SANITIZERS C_COMPILER C++_COMPILER
set -euo pipefail
sources=$1
build=$2
installed=$3
log=$(mktemp)
trap 'rm -f "$log"' EXIT

if [ -n "$4" ]; then
    build=$2/python/libraries
    cmake -S "$sources" -B "$build" -G Ninja -DCMAKE_C_COMPILER="$5" -DCMAKE_CXX_COMPILER="$6" \
        -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG=-O1 -DQRYLIB_BUILD_TESTS=OFF >"$log" 2>&1 || { cat "$log" >&2; exit 1; }
    cmake --build "$build" -j2 --target qrytext >"$log" 2>&1 || { cat "$log" >&2; exit 1; }
fi
rm -rf "$installed"
for component in runtime companion python; do
    cmake --install "$build" --component "$component" --prefix "$installed" >/dev/null
done
