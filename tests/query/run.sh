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

awk -f "$here/../stable_traces.awk" "$root/docs/trace-points.tsv" answers >shown

if ! diff -u --label "$name.out" --label "printed" "$here/$name.out" shown; then
    echo "$name: the answers differ from tests/query/$name.out" >&2
    exit 1
fi
