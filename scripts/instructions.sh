#!/usr/bin/env bash
# Counts the instructions of one call of each statement, on the workstation and on the device, and writes them to
# bench/instructions.tsv. Works from any folder; installs what is missing.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install_packages.sh
for preset in package device firmware; do
    cmake --preset "$preset" >/dev/null
done
for preset in package device; do
    cmake --build --preset "$preset" --target counted
done
cmake --build --preset firmware
python3 -B bench/instructions.py bench/instructions.tsv --workstation build/package/tests/packages/counted \
    --device build/device/tests/counted build/firmware/src build/device/platform/host
