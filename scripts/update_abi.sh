#!/usr/bin/env bash
# Renews tests/abi from the development and device builds: the way to say that a changed function or record is meant.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

for preset in dev device; do
    cmake --preset "$preset" >/dev/null
    cmake --build --preset "$preset" --target qrylib
    processor=$(sed -n 's/^set(CMAKE_SYSTEM_PROCESSOR "\(.*\)")$/\1/p' build/$preset/CMakeFiles/*/CMakeSystem.cmake)
    scripts/dump_abi.sh "build/$preset/src/libqrylib.so" "tests/abi/libqrylib-$processor.abi"
done
