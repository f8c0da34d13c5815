#!/usr/bin/env bash
# Runs the shell sessions that a page shows and compares what the shell prints with what the page says, byte for
# byte. A session is a fenced block that begins with a prompt, or with the command that starts the shell on the
# sample device; every session starts on a fresh one. A source line in a trace is shown as "*".
#
# usage: run_examples.sh PAGE COMMAND... (the shell's full path, behind an emulator where it needs one)
set -euo pipefail
page=$1
qrysh=("${@:2}")
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
root=$(cd "$here/../.." && pwd)

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$root"

# One file for each session, named after the line on which it stands.
awk -v folder="$scratch" '
    /^```/ { inside = !inside; first = 1; session = ""; next }
    inside && first && (/^qrysh> / || /^\$ .*\/qrysh /) { session = sprintf("%s/%05d", folder, NR) }
    inside { first = 0 }
    session != "" { print > session }' "$page"

count=0
for session in "$scratch"/[0-9]*; do
    [ -e "$session" ] || break
    count=$((count + 1))
    place=$page:$((10#$(basename "$session")))
    options=(--fixture examples/office.json)
    if [ "$(head -c 2 "$session")" = "$ " ]; then
        # shellcheck disable=SC2207
        options=($(sed -n '1s|^.*/qrysh ||p' "$session"))
        sed -i 1d "$session"
    fi
    sed -nE 's/^(qrysh|  \.\.\.)> //p; /^$/p' "$session" >"$scratch/input"
    expected_status=0
    ! grep -q '^error: ' "$session" || expected_status=1
    status=0
    "${qrysh[@]}" --echo "${options[@]}" <"$scratch/input" >"$scratch/answers" 2>&1 || status=$?
    awk -f "$here/../stable_traces.awk" docs/trace-points.tsv "$scratch/answers" >"$scratch/shown"
    echo "exit status $expected_status" >>"$session"
    echo "exit status $status" >>"$scratch/shown"
    if ! diff -u --label "$place" --label printed "$session" "$scratch/shown"; then
        echo "$place: the answers differ from the page" >&2
        exit 1
    fi
done
[ "$count" -gt 0 ] || { echo "$page: no session found" >&2; exit 1; }
echo "$count sessions"
