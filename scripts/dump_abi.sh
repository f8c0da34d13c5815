#!/usr/bin/env bash
# Writes down what callers of a library were compiled against: its exported functions and the records that they
# reach, from the library's debug information.
#
# usage: dump_abi.sh LIBRARY OUTPUT
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
abidw --exported-interfaces-only --headers-dir "$root/include/qrylib" --drop-private-types --no-elf-needed \
    --no-corpus-path --no-comp-dir-path --no-show-locs --out-file "$2" "$1"
sed -i "s@path='$root/@path='@" "$2"
