#!/usr/bin/env bash
# Builds the library. Works from any folder; installs what is missing.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install_packages.sh
cmake --preset release >/dev/null
cmake --build --preset release
