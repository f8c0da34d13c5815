#!/usr/bin/env bash
# Runs every statement in the note tables of a page and looks for its note on standard error. Then runs it once more in a
# strict shell, which must refuse it. Runs every statement in the answer tables and looks for its answer under the caret. A
# table is announced by a comment that names the database; U+2423 stands for a blank, U+21E5 for a tab.
#
# usage: run_notes.sh PAGE COMMAND... (the shell's full path, behind an emulator where it needs one)
set -euo pipefail
page=$1
qrysh=("${@:2}")
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# kind of table, database, statement, note or answer
awk '
    /^<!-- (notes|answers) / { kind = $2; database = $3; next }
    /^$/ && rows { database = ""; rows = 0 }
    database != "" && /^\| `/ {
        split($0, field, /` \| `?/)
        ++rows
        sub(/`( \|)?$/, "", field[2])
        gsub(/␣/, " ", field[1])
        gsub(/⇥/, "\t", field[1])
        printf "%s\037%s\037%s\037%s\n", kind, database, substr(field[1], 4), field[2]
    }' "$page" >"$scratch/rows"

# Refuses $statement with the answer $note under the caret, and runs nothing.
check_answer() {
    if "${shell[@]}" "$statement" >/dev/null 2>"$scratch/said" </dev/null ||
        ! sed -n 's/^ *^* \?//p' "$scratch/said" | grep -xF -- "$note" >/dev/null; then
        printf '%s: %s\nmust be answered: %s\n' "$page" "$statement" "$note" >&2
        cat "$scratch/said" >&2
        exit 1
    fi
}

count=0
while IFS=$'\037' read -r kind database statement note; do
    count=$((count + 1))
    shell=("${qrysh[@]}" --db "$database" --fixture examples/office.json)
    if [ "$kind" = answers ]; then
        check_answer
        continue
    fi
    "${shell[@]}" "$statement;" >/dev/null 2>"$scratch/said" </dev/null || true
    if ! grep -qxF "note: $note" "$scratch/said"; then
        printf '%s: %s\nmust be noted: %s\n' "$page" "$statement" "$note" >&2
        cat "$scratch/said" >&2
        exit 1
    fi
    if "${shell[@]}" --strict "$statement;" >"$scratch/answer" 2>&1 </dev/null ||
        ! grep -q '^error: .*: not run: a note stands against it' "$scratch/answer"; then
        printf '%s: a strict shell must refuse %s\n' "$page" "$statement" >&2
        exit 1
    fi
done <"$scratch/rows"
[ "$count" -gt 0 ] || { echo "$page: no notes found" >&2; exit 1; }
echo "$count notes and answers"
