#!/usr/bin/env bash
# What lies under /usr is found by the system: neither the libraries and the shell nor what is built with pkg-config's flags
# name folders to search. Under other prefixes all of them do, as the c-api tests show.
#
# usage: search_paths.sh BUILD SOURCES C_COMPILER
set -euo pipefail
build=$1
sources=$2
compiler=$3

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
DESTDIR=$scratch cmake --install "$build" >/dev/null
PKG_CONFIG_PATH=$(dirname "$(find "$scratch/usr" -name qrylib.pc)")
export PKG_CONFIG_PATH
libdir=${PKG_CONFIG_PATH%/pkgconfig}
read -r -a flags <<<"$(pkg-config --cflags --libs qrylib)"
"$compiler" -std=c99 "$sources/examples/people.c" -o "$scratch/people" "${flags[@]}"

files=("$scratch/people" "$scratch/usr/bin/qrysh" "$libdir"/lib{qrylib,qryplatform,qrytext}.so.1)
for file in "${files[@]}"; do
    dynamic=$(readelf -d "$file")
    [[ $dynamic == *NEEDED* ]] || { echo "$file needs nothing" >&2; exit 1; }
    [[ $dynamic != *RPATH* && $dynamic != *RUNPATH* ]] || { echo "$file names a folder" >&2; exit 1; }
done
LD_LIBRARY_PATH=$libdir "$scratch/people" | diff "$sources/tests/c-api/people.out" -
