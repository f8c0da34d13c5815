#!/usr/bin/env bash
# Takes the C program that the README shows, which must be the file EXAMPLE, compiles it as C99 with warnings as errors
# against the build and runs it on an empty device: it prints what the README shows below it. So does the command with
# which the README shows what an image can spoil, in a folder that holds nothing but a README.md.
#
# usage: run_program.sh README EXAMPLE COMPILER FLAGS INCLUDES LIBRARY PLATFORM [EMULATOR...]
set -euo pipefail
readme=$1
example=$2
compiler=$3
flags=$4
includes=$5
libraries=("$6" "$7")
emulator=("${@:8}")

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
awk '/^```c$/ { inside = 1; next } /^```/ { inside = 0 } inside' "$readme" >program.c
[ -s program.c ] || { echo "$readme: no C program found" >&2; exit 1; }
diff -u --label "$readme" --label "$example" program.c "$example"
awk '/^```c$/ { shown = 1 } shown && /^```$/ { ++fences; next } fences == 2 { print } fences > 2 { exit }' "$readme" >expected

# shellcheck disable=SC2086
"$compiler" -std=c99 -Wall -Wextra -Wpedantic -Werror $flags -I"$includes" program.c "${libraries[@]}" \
    -Wl,-rpath,"$(dirname "${libraries[0]}")" -Wl,-rpath,"$(dirname "${libraries[1]}")" -o people
"${emulator[@]}" ./people >printed
diff -u --label expected --label printed expected printed

awk '/^```/ { inside = 0 } inside; /^\$ QRYLIB_IMAGE=README.md .* .\/people 2>&1 \| tail -n 1$/ { inside = 1 }' "$readme" >expected
[ -s expected ] || { echo "$readme: no spoiled image found" >&2; exit 1; }
cp "$readme" README.md
status=0
QRYLIB_IMAGE=README.md QRYLIB_TRACE=stderr "${emulator[@]}" ./people >said 2>&1 || status=$?
diff -u --label expected --label printed expected <(tail -n 1 said)
[ "$status" -eq 1 ]
