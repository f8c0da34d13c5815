#!/usr/bin/env bash
# Builds the library alone against a porter's platform library, for which the workstation's stands in, and lets the
# shell run a query on it.
#
# usage: platform_libraries.sh SOURCE_FOLDER COMPILER TOOLCHAIN_FILE PLATFORM_LIBRARY COMMAND... (the shell)
set -euo pipefail
source=$1
compiler=$2
toolchain=$3
platform=$4
qrysh=("${@:5}")

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cmake -S "$source" -B "$scratch" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$toolchain" -DCMAKE_CXX_COMPILER="$compiler" \
    -DQRYLIB_PLATFORM=device -DQRYLIB_PLATFORM_LIBRARIES="$platform" -DQRYLIB_BUILD_TESTS=OFF >/dev/null
cmake --build "$scratch" --target qrylib >/dev/null
readelf -d "$scratch/src/libqrylib.so.1" | grep -q "NEEDED.*\[$(basename "$platform" | grep -oE '^[^.]*\.so\.[0-9]+')\]"

# The program's own folders come after this variable's.
export LD_LIBRARY_PATH=$scratch/src
answer=$("${qrysh[@]}" --fixture "$source/examples/office.json" --mode csv 'SELECT COUNT(*) FROM PSN_TBL')
[ "$answer" = $'COUNT(*)\r\n10\r' ] || { echo "answered: $answer" >&2; exit 1; }
