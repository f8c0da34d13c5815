#!/usr/bin/env bash
# Runs every text in the refusal tables of a page and compares code and trace points with the table's, in order.
# A table is announced by a comment that names the database and, if the rows show only a part of the statement,
# the statement with "..." in its place. In a row U+2423 stands for a blank and U+21E5 for a tab.
#
# Then looks the other way: every fixed trace point that a query can leave must be named on the page.
#
# usage: run_refusals.sh PAGE COMMAND... (the shell's full path, behind an emulator where it needs one)
set -euo pipefail
page=$1
qrysh=("${@:2}")
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
root=$(cd "$here/../.." && pwd)
points=$root/docs/trace-points.tsv

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$root"

# database, statement, code, trace points
awk '
    /^<!-- refusals / {
        database = $3
        sub(/:$/, "", database)
        template = "..."
        if (match($0, /: .* -->$/)) {
            template = substr($0, RSTART + 2, RLENGTH - 6)
        }
        next
    }
    /^$/ && rows { database = ""; rows = 0 }
    database != "" && /^\| `/ {
        split($0, field, / \| /)
        text = substr(field[1], 4, length(field[1]) - 4)
        gsub(/␣/, " ", text)
        gsub(/⇥/, "\t", text)
        place = index(template, "...")
        ++rows
        statement = substr(template, 1, place - 1) text substr(template, place + 3)
        printf "%s\t%s\037\t%s\t%s\n", database, statement, field[2], field[3]
    }' "$page" >"$scratch/rows"

# Tabs may stand in a statement, so its end is marked; the shell reads it with a ";" behind it, which keeps blanks.
while IFS= read -r database; do
    grep "^$database"$'\t' "$scratch/rows" | cut -f 2- >"$scratch/expected"
    sed 's/\x1f.*/;/' "$scratch/expected" >"$scratch/input"
    "${qrysh[@]}" --echo --trace --db "$database" --fixture examples/office.json <"$scratch/input" \
        >"$scratch/answers" 2>&1 || true
    awk -F '\t' '
        function finish() {
            if (statement != "") {
                printf "%s\037\t%s\t%s\n", statement, code, trace == "" ? "source line" : trace
            }
        }
        NR == FNR { fixed[$1 " " $2]; next }
        /^qrysh> / { finish(); statement = substr($0, 8, length($0) - 8); code = "accepted"; trace = "" }
        match($0, /^[A-Za-z_0-9]+\(\):\[Return\]:\([0-9]+\)/) {
            name = $0; sub(/\(.*/, "", name)
            line = substr($0, 1, RLENGTH); sub(/.*\(/, "", line); sub(/\)/, "", line)
            if ((name " " line) in fixed) {
                trace = trace (trace == "" ? "" : ", ") "`" name "` " line
            }
        }
        /^error: / && match($0, /\(0x[0-9A-F]+\)/) { code = substr($0, RSTART + 1, RLENGTH - 2) }
        END { finish() }' "$points" "$scratch/answers" >"$scratch/shown"
    if ! diff -u --label "$page" --label printed "$scratch/expected" "$scratch/shown"; then
        echo "$page: refusals in $database differ from the page" >&2
        exit 1
    fi
done < <(cut -f 1 "$scratch/rows" | sort -u)
[ -s "$scratch/rows" ] || { echo "$page: no refusals found" >&2; exit 1; }

# The rest of the table is about device data, and about conversions that leave their points on every call.
others='version|doublecount|ConvertTbRetcode|^conv_val'
missing=$(awk -F '\t' -v others="$others" 'NR > 1 && $1 !~ others { print "`" $1 "` " $2 }' "$points" |
    while IFS= read -r point; do
        grep -qE "$point([^0-9]|$)" "$page" || echo "$point"
    done)
if [ -n "$missing" ]; then
    printf '%s: trace points that it does not name:\n%s\n' "$page" "$missing" >&2
    exit 1
fi
echo "$(wc -l <"$scratch/rows") refusals"
