#!/usr/bin/env bash
# Builds everything and runs all tests: on this machine with sanitizers, then for the device under emulation, then
# the library alone as firmware gets it, then the build that packages are made of, then the fuzzers. What follows the
# command goes to ctest. Ends with the list of skipped tests, and fails when tests/skips/known.tsv does not name one.
# Works from any folder; installs what is missing.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install_packages.sh
tests/analysis/install.sh
runs=()
for preset in dev device firmware package fuzz; do
    echo "== $preset"
    cmake --preset "$preset" >/dev/null
    cmake --build --preset "$preset"
    results=$PWD/build/$preset/tests.xml
    rm -f "$results"
    ctest --preset "$preset" --parallel 2 --output-junit "$results" "$@"
    runs+=("$preset=$results")
done
echo "== skipped"
python3 -B tests/skips/judge.py tests/skips/known.tsv "${runs[@]}"
