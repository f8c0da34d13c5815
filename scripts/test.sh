#!/usr/bin/env bash
# Builds everything and runs all tests: on this machine with sanitizers, then for the device under emulation, then
# the library alone as firmware gets it. What follows the command goes to ctest. Works from any folder; installs
# what is missing.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install_packages.sh
for preset in dev device firmware; do
    echo "== $preset"
    cmake --preset "$preset" >/dev/null
    cmake --build --preset "$preset"
    ctest --preset "$preset" --parallel 2 "$@"
done
