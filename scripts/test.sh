#!/usr/bin/env bash
# Builds everything and runs all tests. Works from any folder; installs what is missing.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install_packages.sh
cmake --preset dev >/dev/null
cmake --build --preset dev
ctest --preset dev --parallel 2 "$@"

# The fuzzers need a build of their own. A choice of tests that does not name them leaves them out.
if [ $# -eq 0 ] || [[ "$*" == *fuzz* ]]; then
    cmake --preset fuzz >/dev/null
    cmake --build --preset fuzz
    ctest --preset fuzz --parallel 2 "$@"
fi
