#!/usr/bin/env bash
# Compiles every program of examples/ with warnings as errors, runs it on an empty device and compares what it prints with
# tests/docs/printed/. The c-api tests do the same with those that the installed package is tried with.
#
# usage: run_programs.sh ROOT C_COMPILER C++_COMPILER FLAGS HEADERS LIBRARY PLATFORM COMPANION [EMULATOR...] (HEADERS: the
# folder where the companion's headers are included from)
set -euo pipefail
root=$1
c_compiler=$2
cxx_compiler=$3
read -r -a flags <<<"-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror $4"
headers=(-I"$root/include" -I"$root" -I"$5")
libraries=("$6" "$7" "$8")
emulator=("${@:9}")

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
for library in "${libraries[@]}"; do
    libraries+=(-Wl,-rpath,"$(dirname "$library")")
done

# Each in a folder of its own, where it may leave files.
try() {
    local source=$1 name
    name=$(basename "$source")
    mkdir "$name"
    if [[ $name == *.cpp ]]; then
        "$cxx_compiler" -std=c++17 "${flags[@]}" "${headers[@]}" "$source" "${libraries[@]}" -o "$name/program"
    else
        "$c_compiler" -std=c99 "${flags[@]}" "${headers[@]}" "$source" "${libraries[@]}" -o "$name/program"
    fi
    (cd "$name" && "${emulator[@]}" ./program >printed)
    diff -u --label "$name.out" --label printed "$root/tests/docs/printed/$name.out" "$name/printed"
}

count=0
for source in "$root"/examples/*.c "$root"/examples/*.cpp; do
    case $(basename "$source") in
    people.c | people.cpp | companion.c) ;; # the c-api tests'
    *)
        try "$source"
        count=$((count + 1))
        ;;
    esac
done
[ "$count" -eq "$(find "$root/tests/docs/printed" -name '*.out' | wc -l)" ] ||
    { echo "tests/docs/printed has the output of a program that is not there" >&2; exit 1; }
echo "$count programs"
