#!/usr/bin/env bash
# Installs a build into a scratch folder, then builds and runs callers in C99 and C++17 three ways: over what
# CMake finds there, over what pkg-config finds there, and with the library's sources as part of their project. Nobody
# tells the programs where the libraries lie: they start because the libraries and their callers name the folder.
#
# In place of a build folder there may be one that the packages were unpacked into: then nothing is installed, the sources
# are left alone, and the loader is told where the libraries lie, which a system knows of those that its packages install.
#
# usage: run.sh BUILD SOURCES C_COMPILER C++_COMPILER FLAGS TOOLCHAIN_FILE [EMULATOR...]
set -euo pipefail
build=$1
sources=$2
c_compiler=$3
cxx_compiler=$4
flags=$5
toolchain=$6
emulator=("${@:7}")
here=$sources/tests/c-api
callers=$here/callers

unset LD_LIBRARY_PATH
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
quietly() {
    "$@" >"$scratch/log" 2>&1 || { cat "$scratch/log" >&2; return 1; }
}

# Runs the three programs in folder $1. The two languages of the example must say the same.
run_callers() {
    "${emulator[@]}" "$1/caller"
    for language in c cpp; do
        "${emulator[@]}" "$1/people_$language" | diff "$here/people.out" -
    done
    if [ -e "$1/companion" ]; then
        "${emulator[@]}" "$1/companion" | diff "$here/companion.out" -
    fi
}

# Builds the callers as a project of their own in folder $1; the rest: where the library is.
build_callers() {
    quietly cmake -S "$callers" -B "$1" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$toolchain" \
        -DCMAKE_C_COMPILER="$c_compiler" -DCMAKE_CXX_COMPILER="$cxx_compiler" -DCMAKE_C_FLAGS="$flags" \
        -DCMAKE_CXX_FLAGS="$flags" -DQRYLIB_EXAMPLES="$sources/examples" "${@:2}"
    quietly cmake --build "$1" -j2
}

if [ -e "$build/CMakeCache.txt" ]; then
    quietly cmake --install "$build" --prefix "$scratch/usr"
else
    cp -a "$build" "$scratch/usr"
fi
PKG_CONFIG_PATH=$(dirname "$(find "$scratch/usr" -name qrylib.pc)")
export PKG_CONFIG_PATH
libdir=${PKG_CONFIG_PATH%/pkgconfig}
where=(-DCMAKE_PREFIX_PATH="$scratch/usr")
# A cross build looks for packages below its root folders alone.
[ -z "$toolchain" ] || where=(-Dqrylib_DIR="$libdir/cmake/qrylib")
[ -e "$build/CMakeCache.txt" ] || export LD_LIBRARY_PATH=$libdir
build_callers "$scratch/found" "${where[@]}"
run_callers "$scratch/found"

# An installation is complete in itself: its libraries and its shell find each other without the callers' help.
[ ! -e "$build/CMakeCache.txt" ] || for file in "$libdir"/libqrylib.so.1 "$libdir"/libqrytext.so.1 "$scratch"/usr/bin/qrysh; do
    [ ! -e "$file" ] || [[ $(readelf -d "$file") == *'RUNPATH'*'[$ORIGIN'* ]] || { echo "$file names no folder" >&2; exit 1; }
done
# The shell finds the sample device where it was installed.
if [ -e "$scratch/usr/bin/qrysh" ]; then
    count=$("${emulator[@]}" "$scratch/usr/bin/qrysh" --sample --mode csv 'SELECT COUNT(*) FROM PSN_TBL')
    [ "$count" = $'COUNT(*)\r\n10\r' ] || { echo "the installed shell has no sample device" >&2; exit 1; }
fi

if [ -e "$build/CMakeCache.txt" ]; then
    build_callers "$scratch/part" -DQRYLIB_SOURCE="$sources"
    run_callers "$scratch/part"
fi

pkg-config --validate qrylib
mkdir "$scratch/asked"
read -r -a library <<<"$(pkg-config --cflags --libs qrylib)"
read -r -a extra <<<"$flags"
platform=(-I"$(pkg-config --variable=includedir qrylib)/qrylib-platform" -lqryplatform)
"$c_compiler" -std=c99 -Wpedantic -Werror "${extra[@]}" "$callers/caller.c" -o "$scratch/asked/caller" \
    "${library[@]}" "${platform[@]}"
"$c_compiler" -std=c99 -Wpedantic -Werror "${extra[@]}" "$sources/examples/people.c" -o "$scratch/asked/people_c" \
    "${library[@]}"
"$cxx_compiler" -std=c++17 -Wpedantic -Werror "${extra[@]}" "$sources/examples/people.cpp" \
    -o "$scratch/asked/people_cpp" "${library[@]}"
if [ -e "$PKG_CONFIG_PATH/qrytext.pc" ]; then
    pkg-config --validate qrytext
    read -r -a companion <<<"$(pkg-config --cflags --libs qrytext)"
    "$c_compiler" -std=c99 -Wpedantic -Werror "${extra[@]}" "$sources/examples/companion.c" -o "$scratch/asked/companion" \
        "${companion[@]}"
fi
run_callers "$scratch/asked"
