#!/usr/bin/env bash
# Installs the build in $1 into a scratch folder and builds and runs the caller against it, once found by CMake
# and once by pkg-config.
#
# usage: run.sh BUILD THIS_FOLDER COMPILER FLAGS TOOLCHAIN_FILE [EMULATOR...]
set -euo pipefail
build=$1
source=$2
compiler=$3
flags=$4
toolchain=$5
emulator=("${@:6}")

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cmake --install "$build" --prefix "$scratch/usr" >/dev/null
export PKG_CONFIG_PATH=$(dirname "$(find "$scratch/usr" -name qrylib.pc)")
export LD_LIBRARY_PATH=${PKG_CONFIG_PATH%/pkgconfig}

cmake -S "$source" -B "$scratch/build" -G Ninja -DCMAKE_PREFIX_PATH="$scratch/usr" -DCMAKE_STAGING_PREFIX="$scratch/usr" \
    -DCMAKE_TOOLCHAIN_FILE="$toolchain" -DCMAKE_C_COMPILER="$compiler" -DCMAKE_C_FLAGS="$flags" >/dev/null
cmake --build "$scratch/build" >/dev/null
"${emulator[@]}" "$scratch/build/caller"

prefix=(--define-variable=prefix="$scratch/usr")
# shellcheck disable=SC2046,SC2086
"$compiler" -std=c99 -Wpedantic -Werror $flags "$source/caller.c" -o "$scratch/caller" \
    -I"$scratch/usr/include/qrylib-platform" $(pkg-config "${prefix[@]}" --cflags --libs qrylib) -lqryplatform
"${emulator[@]}" "$scratch/caller"
