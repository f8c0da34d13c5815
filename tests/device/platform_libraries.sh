#!/usr/bin/env bash
# Builds the library alone against a porter's platform library, for which the workstation's stands in, and lets the
# README's program run its queries on it.
#
# usage: platform_libraries.sh SOURCE_FOLDER COMPILER TOOLCHAIN_FILE PLATFORM_LIBRARY C_COMPILER C_FLAGS [EMULATOR...]
set -euo pipefail
source=$1
compiler=$2
toolchain=$3
platform=$4
program=("${@:5:2}")
emulator=("${@:7}")

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cmake -S "$source" -B "$scratch" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$toolchain" -DCMAKE_CXX_COMPILER="$compiler" \
    -DQRYLIB_PLATFORM=device -DQRYLIB_PLATFORM_LIBRARIES="$platform" -DQRYLIB_BUILD_TESTS=OFF >/dev/null
cmake --build "$scratch" --target qrylib >/dev/null
needed=$(basename "$platform" | grep -oE '^[^.]*\.so\.[0-9]+')
grep -q "NEEDED.*\[$needed\]" <<<"$(readelf -d "$scratch/src/libqrylib.so.1")"

"$source/tests/docs/run_program.sh" "$source/README.md" "$source/examples/people.c" "${program[@]}" \
    "$source/include" "$scratch/src/libqrylib.so" "$platform" "${emulator[@]}"
