#!/usr/bin/env bash
# Runs the shell commands of docs/analysis.md in a folder, and compares what they print with what the page shows.
#
# usage: commands.sh SQLITE PYTHON INSTALLED FOLDER SHELL (full paths; INSTALLED: the package of Python)
set -euo pipefail
sqlite=$1
python=$2
installed=$3
folder=$4
shell=$5
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
"$python" -c "import distributed, pandas, matplotlib" || exit 77

rm -rf "$folder"
mkdir -p "$folder"
cd "$folder"
ln -s "$root/examples" examples

libraries=$(dirname "$(find "$installed" -name 'libqrytext.so.1')")
python3() { PYTHONPATH=$installed/lib/python3/dist-packages LD_LIBRARY_PATH=$libraries "$python" "$@"; }
qrysh() { "$shell" "$@"; }
sqlite3() { "$sqlite" "$@"; }

# block LANGUAGE: the lines of the page's blocks of that language.
block() {
    awk -v open="\`\`\`$1" '$0 == open { inside = 1; next } /^```/ { inside = 0 } inside' "$root/docs/analysis.md"
}
block sh >commands.sh
block text >shown
block python >questions.py
[ -s commands.sh ] && [ -s shown ] && [ -s questions.py ]

# shellcheck disable=SC1091
source ./commands.sh >printed
diff -u --label docs/analysis.md --label printed shown printed
