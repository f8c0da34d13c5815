#!/usr/bin/env bash
# A fault sweep on a device image that others use: it works on a copy, so that nobody's change is lost, and one that is
# killed leaves the image as it was.
#
# usage: sweeps.sh COMMAND... (the shell's full path, behind an emulator where it needs one)
set -euo pipefail
qrysh=("$@")
fixture=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)/examples/office.json

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"

fail() {
    printf '%s\n' "$@"
    exit 1
}

"${qrysh[@]}" --new device.img --fixture "$fixture" -c '.save before.json' 2>err || fail "$(cat err)"
sweep=(--image device.img --mode csv -c ".fault sweep UPDATE PSN_TBL SET PSN_NAME = 'swept' WHERE PSN_ID = 3")

# Updates that others are promised while the sweep runs.
"${qrysh[@]}" "${sweep[@]}" >rows.csv 2>err &
sweeper=$!
round=0
while [ "$round" -lt 40 ] && { kill -0 "$sweeper" 2>/dev/null || [ "$round" -lt 3 ]; }; do
    round=$((round + 1))
    "${qrysh[@]}" --image device.img -c "UPDATE PSN_TBL SET PSN_NAME = 'round $round' WHERE PSN_ID = 1" 2>err ||
        fail "$(cat err)"
    name=$("${qrysh[@]}" --image device.img --mode jsonl 'SELECT PSN_NAME FROM PSN_TBL WHERE PSN_ID = 1')
    [ "$name" = "{\"PSN_NAME\":\"round $round\"}" ] || fail "round $round: the image holds $name"
done
wait "$sweeper" || fail "$(cat err)"
[ "$(wc -l <rows.csv)" -gt 10 ] || fail 'the sweep lists too little' "$(cat rows.csv)"
"${qrysh[@]}" --image device.img -c '.save after.json'
[ "$(diff before.json after.json | grep -c '^[<>]')" -eq 2 ] && grep -q "\"round $round\"" after.json ||
    fail 'the sweep changed the image' "$(diff before.json after.json)"

# Killed while it runs.
for _ in 1 2 3; do
    setsid "${qrysh[@]}" "${sweep[@]}" >rows.csv 2>/dev/null &
    sweeper=$!
    sleep 0.3
    kill -KILL -- "-$sweeper" 2>/dev/null || true
    wait "$sweeper" 2>/dev/null || true
    "${qrysh[@]}" --force --image device.img -c '.save killed.json'
    cmp -s after.json killed.json || fail 'a killed sweep changed the image' "$(diff after.json killed.json)"
done

# An image that can only be read is swept all the same.
chmod 400 device.img
"${qrysh[@]}" --readonly "${sweep[@]}" >rows.csv 2>err || fail "$(cat err)"
[ "$(wc -l <rows.csv)" -gt 10 ] || fail 'the sweep of a read-only image lists too little' "$(cat rows.csv)"
