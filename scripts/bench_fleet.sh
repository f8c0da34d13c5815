#!/usr/bin/env bash
# Measures how fast a fleet's snapshots are read and writes the section of docs/benchmarks.md about it. Works from any
# folder; installs what is missing. Takes some minutes; use a quiet machine.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install_packages.sh
cmake --preset package >/dev/null
cmake --build --preset package --target qrytext
installed=$PWD/build/package/python/installed
tests/python/install.sh "$PWD/build/package" "$installed"
libraries=$(dirname "$(find "$installed" -name 'libqrytext.so.1')")

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
PYTHONPATH=$installed/lib/python3/dist-packages LD_LIBRARY_PATH=$libraries PYTHONDONTWRITEBYTECODE=1 \
    /usr/bin/python3 bench/fleet.py docs/benchmarks.md "$scratch" "$@"
