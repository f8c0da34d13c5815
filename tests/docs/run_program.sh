#!/usr/bin/env bash
# Takes the C program that a page shows, compiles it as C99 with warnings as errors against the build, runs it on
# an empty device and compares what it prints with the file EXPECTED.
#
# usage: run_program.sh PAGE EXPECTED COMPILER FLAGS INCLUDES LIBRARY PLATFORM [EMULATOR...]
set -euo pipefail
page=$1
expected=$2
compiler=$3
flags=$4
includes=$5
libraries=("$6" "$7")
emulator=("${@:8}")

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
awk '/^```c$/ { inside = 1; next } /^```/ { inside = 0 } inside' "$page" >"$scratch/program.c"
[ -s "$scratch/program.c" ] || { echo "$page: no C program found" >&2; exit 1; }

# shellcheck disable=SC2086
"$compiler" -std=c99 -Wall -Wextra -Wpedantic -Werror $flags -I"$includes" "$scratch/program.c" "${libraries[@]}" \
    -Wl,-rpath,"$(dirname "${libraries[0]}")" -Wl,-rpath,"$(dirname "${libraries[1]}")" -o "$scratch/program"
"${emulator[@]}" "$scratch/program" >"$scratch/printed"
diff -u --label expected --label printed "$expected" "$scratch/printed"
