#!/usr/bin/env bash
# Records programs of one build and replays what they left: every query text, a caller's calls of all kinds, threads,
# forks, kills, secrets, a ring that overwrites itself. The recorder is preloaded.
#
# usage: recordings.sh ROOT BUILD REPLAY KILLS [EMULATOR...]   (REPLAY: a workstation's qrylib-replay)
set -euo pipefail
root=$1
build=$2
replay=$3
kills=$4
emulator=("${@:5}")
recorder=$build/tools/field/libqrylib-record.so
caller=$build/tests/field/recorded_caller
[ -x "$caller" ] || caller=$build/tests/recorded_caller
fixture=$root/examples/office.json

if [ ! -x "$replay" ]; then
    echo "skipped: qrylib-replay of the workstation build is missing (cmake --build --preset dev)"
    exit 77
fi
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
failures=0
failed() { echo "$*"; failures=$((failures + 1)); }

# recorded WHAT PROGRAM ARGUMENT...: runs it with the recorder and QRYLIB_RECORD=WHAT.
recorded() {
    (in_place "$@")
}

# The same in the place of the shell that calls it, so that who kills that one kills the program.
in_place() {
    local what=$1
    shift
    if [ "${#emulator[@]}" -gt 0 ]; then
        exec env QRYLIB_RECORD="$what" "${emulator[@]}" -E LD_PRELOAD="$recorder" "$@" # its -E splits at commas
    else
        exec env LD_PRELOAD="$recorder" QRYLIB_RECORD="$what" "$@"
    fi
}

# replays FILE PATTERN: no call differs, and the last line of the answer is as the pattern says.
replays() {
    local told status=0
    told=$("$replay" "$1" 2>&1) || status=$?
    # shellcheck disable=SC2053
    if [ "$status" -ne 0 ] || [[ ${told##*$'\n'} != $2 ]]; then
        failed "$1: status $status"
        printf '%s\n' "$told" | tail -n 25
    fi
}

texts=0
for text in "$root"/tests/query/*.sql; do
    name=$(basename "$text" .sql)
    start=$root/tests/query/$name.json
    [ -e "$start" ] || start=$fixture
    recorded "$name.rec,size=64M" "$build/tools/qrysh/qrysh" --fixture "$start" -f "$text" >"$name.told" 2>&1 </dev/null || true
    replays "$name.rec" '* 0 different, 0 masked, 0 incomplete'
    texts=$((texts + 1))
done
[ "$texts" -gt 15 ] || failed "$texts query texts"

recorded mix.rec "$caller" mix "$fixture"
replays mix.rec '* 0 different, 0 masked, 0 incomplete'
for function in exec_query write_data_version check_data_version get_unused_id judge_doublecount handle_add reset_all; do
    [[ $("$replay" --list mix.rec) == *"$function"* || $function = exec_query ]] || failed "mix.rec has no $function"
done
recorded threads.rec,size=8M "$caller" threads "$fixture"
replays threads.rec '* 0 different, 0 masked, 0 incomplete'
[ "$(recorded errno.rec "$caller" errno "$fixture")" = "$("${emulator[@]}" "$caller" errno "$fixture")" ] ||
    failed "errno is not what it is without a recorder"

# A child has a file of its own; so has one whose name has no %p.
forked=$(recorded "fork.%p%c1.rec" "$caller" fork "$fixture")
for process in $(awk '{ print $2 }' <<<"$forked"); do
    replays "fork.$process,1.rec" '* 0 different, 0 masked, 0 incomplete'
done
child=$(recorded "plain.rec" "$caller" fork "$fixture" | awk '/^child/ { print $2 }')
replays plain.rec '* 0 different, 0 masked, 0 incomplete'
replays "plain.rec.$child" '* 0 different, 0 masked, 0 incomplete'

# A ring that is too small keeps the newest: what has lost its beginning is incomplete, and nothing differs.
recorded small.rec,size=32K "$caller" threads "$fixture"
replays small.rec '* 0 different, 0 masked, * incomplete'
[[ $("$replay" --list small.rec) == *"frames were overwritten"* ]] || failed "small.rec overwrote nothing"

# The moment of a fault stays.
recorded stopped.rec,stop=0xDB00 "$caller" threads "$fixture"
[[ $("$replay" --failed stopped.rec) == *"stopped behind"*0xDB00*"ID = 1 AND ID = 2 OR ID = 3"* ]] || failed "stop=CODE"
recorded line.rec,stop=1527 "$caller" mix "$fixture"
[[ $("$replay" --list line.rec) == *"stopped behind"* && $("$replay" --list line.rec) != *get_unused_id* ]] || failed "stop=LINE"
recorded counted.rec,values=off "$caller" mix "$fixture"
[[ $("$replay" --list counted.rec) == *"without values"*"SELECT COUNT"* ]] || failed "values=off"

# Secrets, whatever they hold, stand nowhere in what was written.
secrets=('ge heim1' "it's 2" 'so "3"' '"' "'4'5" $'\xe6\x97\xa5\xe6\x9c\xac' '(6,7)' 'A AND B')
recorded secrets.rec,size=8M "$caller" secrets "${secrets[@]}"
for secret in "${secrets[@]}"; do
    [ "${#secret}" -lt 2 ] || ! LC_ALL=C grep -qaF -- "$secret" secrets.rec || failed "the secret $secret was written"
done
told=$("$replay" secrets.rec) || failed "secrets.rec: ${told##*$'\n'}"
recorded open.rec,size=8M,secrets=keep "$caller" secrets "${secrets[@]}"
LC_ALL=C grep -qaF 'ge heim1' open.rec || failed "secrets=keep keeps none"
replays open.rec '* 0 different, 0 masked, 0 incomplete'

# Killed at any moment, a process leaves every complete frame.
for ((round = 0; round < kills; ++round)); do
    in_place "kill.rec,size=$((32 + round % 3 * 100))K" "$caller" forever "$fixture" >running &
    process=$!
    until [ -s running ]; do sleep 0.01; done
    sleep "0.0$((RANDOM % 9))"
    kill -9 "$process"
    wait "$process" 2>/dev/null || true
    : >running
    [[ $("$replay" --list kill.rec) != *"cannot be read"* ]] || failed "round $round: unreadable frames"
    replays kill.rec '* 0 different, 0 masked, * incomplete'
    rm -f kill.rec
done

# What cannot be recorded is said, and never the caller's concern.
mkdir folder
printf 'mine' >mine.txt
for place in folder mine.txt no/where.rec /dev/full; do
    complaint=$(recorded "$place" "$caller" mix "$fixture" 2>&1) || failed "$place: the caller failed"
    [[ $complaint == *"nothing is recorded"* ]] || failed "$place: $complaint"
done
[ "$(cat mine.txt)" = mine ] || failed "a file that is no recording was replaced"

# What cannot be read is refused with a sentence, or read as far as it goes.
refused() {
    local status=0 told
    told=$("$replay" "$1" 2>&1) || status=$?
    [[ $status -eq 2 && $told == *"$2"* ]] || failed "$1: status $status: $told"
}
head -c 100 mix.rec >cut.rec
refused cut.rec 'this is no recording'
refused mine.txt 'this is no recording'
refused missing.rec 'missing.rec'
cp mix.rec version.rec
printf '\x07' | dd of=version.rec bs=1 seek=8 conv=notrunc status=none
refused version.rec 'format 7'
cp mix.rec header.rec
printf '\xff' | dd of=header.rec bs=1 seek=60 conv=notrunc status=none
refused header.rec 'damaged'
head -c 30000 mix.rec >half.rec
[[ $("$replay" --list half.rec) == *"cannot be read"*"SELECT PSN_ID"* ]] || failed "a cut recording is not read"
"$replay" --copy copied.rec mix.rec
replays copied.rec '* 0 different, 0 masked, 0 incomplete'

echo "$texts query texts, $kills kills, $failures failures"
[ "$failures" -eq 0 ]
