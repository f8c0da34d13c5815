#!/usr/bin/env bash
# Compares the functions that a shared library exports with those that the headers in a folder declare, both ways, and
# checks the soname. usage: check_exports.sh LIBRARY HEADERS
set -euo pipefail
library=$1
headers=$2

exported=$(nm -D --defined-only "$library" | awk '$2 != "A" { sub(/@.*/, "", $3); print $3 }' | sort -u)
declared=$(cat "$headers"/*.h | grep -v '^#' | tr '\n' ' ' | grep -oE '(QRY_LIB|QRYTEXT)_API [a-z][^;]*;' |
           sed -E 's/.*[ *]([a-z_A-Z0-9]+)\(.*/\1/' | sort -u)
if ! diff <(printf '%s\n' "$declared") <(printf '%s\n' "$exported"); then
    echo "exports (>) differ from declarations (<)" >&2
    exit 1
fi
name=$(basename "$library")
[[ $(readelf -d "$library") == *"Library soname: [${name%%.so*}.so.1]"* ]] || { echo "wrong soname" >&2; exit 1; }
