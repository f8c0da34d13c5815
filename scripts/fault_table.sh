#!/usr/bin/env bash
# Sweeps anew with the preset dev and g++, and writes what was swept into the table of docs/testing.md. With
# "--check TABLE" compares the page with a sweep's table, and changes nothing. Works from any folder.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
page=docs/testing.md

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
if [ "${1:-}" = --check ]; then
    table=$2
else
    table=$scratch/table
    cmake --preset dev >/dev/null
    cmake --build --preset dev --target fault_tests
    build/dev/tests/fault_tests docs/trace-points.tsv src examples/office.json "$table" --gtest_brief=1
fi

# The page with the table in the place of its own, from the table's heading to its sum.
awk -v heading='| statement | calls | points |' '
    NR == FNR { table = table $0 "\n"; next }
    index($0, heading) == 1 { inside = 1; printf "%s", table }
    !inside
    inside && /^\| together / { inside = 0 }' "$table" "$page" >"$scratch/page"
if [ "${1:-}" != --check ]; then
    cp "$scratch/page" "$page"
elif ! diff -u --label "$page" --label swept "$page" "$scratch/page"; then
    echo "$page: the table of the fault sweep is not what was swept; scripts/fault_table.sh writes it anew" >&2
    exit 1
fi
