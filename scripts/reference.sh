#!/usr/bin/env bash
# Makes the reference: HTML pages that open with html/index.html, and manual pages of the functions. Works from any folder.
#
# usage: reference.sh [FOLDER] (build/reference unless it is named)
set -euo pipefail
output=$(realpath -m "${1:-$(dirname "${BASH_SOURCE[0]}")/../build/reference}")
cd "$(dirname "${BASH_SOURCE[0]}")/.."

rm -rf "${output:?}"/{html,xml,man}
python3 -B scripts/pages/stage.py "$output/input"
cd "$output/input"
QRYLIB_VERSION=$(<version) QRYLIB_EXTRA_FILES=$(<extra_files) doxygen Doxyfile
cd - >/dev/null
python3 -B scripts/pages/man_pages.py "$output" "$output/man"
