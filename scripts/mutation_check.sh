#!/usr/bin/env bash
# Changes src/ in one small place after the other and lists the changes that no quick test notices:
# mutation_check.sh [--count N] [--seed S] [--list]. Works on copies under build/mutation. Takes an hour for 100.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install_packages.sh python3
exec python3 tests/mutation/mutate.py "$@"
