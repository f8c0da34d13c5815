#!/usr/bin/env bash
# Changes src/ in one small place after the other and lists the changes that no quick test notices:
# mutation_check.sh [--count N] [--seed S] [--list]. Works on copies under build/mutation; a hundred changes take some
# minutes. Works from any folder; installs what is missing.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install_packages.sh
exec python3 -B tests/mutation/mutate.py "$@"
