#!/usr/bin/env bash
# Runs NAME.sql in the shell with traces on and compares what it prints, both streams in order, with NAME.out.
# The records are those of NAME.json, or of the sample device where there is none. A trace line that is not in
# the table of trace points carries a source line, which any edit moves: its number is shown as "*".
#
# usage: run.sh NAME COMMAND... (the shell's full path, behind an emulator where it needs one)
set -euo pipefail
name=$1
qrysh=("${@:2}")
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
root=$(cd "$here/../.." && pwd)

fixture=$here/$name.json
[ -e "$fixture" ] || fixture=$root/examples/office.json

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"

status=0
"${qrysh[@]}" --echo --trace --fixture "$fixture" <"$here/$name.sql" >answers 2>&1 || status=$?
echo "exit status $status" >>answers

# shellcheck disable=SC2016
awk -F '\t' '
    NR == FNR { fixed[$1 "():" $2]; next }
    match($0, /^ *[A-Za-z_0-9]+\(\):\[(Enter|Return)\]:\([0-9]+\)/) {
        point = substr($0, 1, RLENGTH)
        function_name = substr(point, 1, index(point, ":[") - 1)
        sub(/^ */, "", function_name)
        line = point
        sub(/.*\(/, "", line)
        sub(/\)/, "", line)
        if (!((function_name ":" line) in fixed)) {
            sub(/\([0-9]+\)$/, "(*)", point)
            $0 = point substr($0, RLENGTH + 1)
        }
    }
    { print }' "$root/docs/trace-points.tsv" answers >shown

if ! diff -u --label "$name.out" --label "printed" "$here/$name.out" shown; then
    echo "$name: the answers differ from tests/query/$name.out" >&2
    exit 1
fi
