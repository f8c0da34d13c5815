#!/usr/bin/env bash
# Runs the shell commands of docs/analysis.md, and compares what they print with what the page shows.
#
# usage: analysis.sh SQLITE COMMAND... (sqlite3's path, or "none"; the shell's full path, behind an emulator where
# it needs one)
set -euo pipefail
sqlite=$1
command=("${@:2}")
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
[ "$sqlite" != none ] || exit 77

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
ln -s "$root/examples" examples

qrysh() { "${command[@]}" "$@"; }
sqlite3() { "$sqlite" "$@"; }

# block LANGUAGE: the lines of the page's blocks of that language.
block() {
    awk -v open="\`\`\`$1" '$0 == open { inside = 1; next } /^```/ { inside = 0 } inside' "$root/docs/analysis.md"
}
block sh >commands.sh
block text >shown
[ -s commands.sh ] && [ -s shown ]

# shellcheck disable=SC1091
source ./commands.sh >printed
diff -u --label docs/analysis.md --label printed shown printed
