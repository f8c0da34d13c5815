#!/usr/bin/env bash
# What steers a terminal, or hides in it, never gets there, whatever mode and stream it would take; files and pipes
# get the bytes as they are.
#
# usage: escapes.sh PYTHON COMMAND... (python3's path; the shell's full path, behind an emulator where it needs one)
set -euo pipefail
python=$1
qrysh=("${@:2}")
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
export LC_ALL=C.UTF-8 NO_COLOR=1
failures=0

fail() {
    printf '%s\n' "$@"
    failures=$((failures + 1))
}

# An escape sequence, a bell, a C1 control, a mark that turns the direction of writing, a byte that is no UTF-8.
steering=$'a\e]0;owned\ab\u009bc\u202Ed'
printf '{"format": 1, "databases": {"adbk_db": {"PSN_TBL": {"records": [{"PSN_ID": 1, "PSN_NAME": "%s"}]}}}}' \
    'a\u001b]0;owned\u0007b\u009bc\u202Ed' >evil.json
printf '{"format": 1, "databases": {"adbk_db": {"PSN_TBL": {"records": [{"PSN_ID": 1, "%s": 1}]}}}}' \
    'a\u001b]0;owned\u0007b\u009bc\u202Ed' >key.json

# What a terminal gets: line ends, what is printable, and nothing invisible.
check_terminal() {
    if LC_ALL=C grep -qP '[\x00-\x08\x0B\x0C\x0E-\x1F\x7F]|\xC2[\x80-\x9F]|\xE2\x80[\x8B-\x8F\xA8-\xAE]' terminal; then
        fail "$1 reaches the terminal:" "$(cat -v terminal)"
    fi
}

# at_terminal WANTED ARGUMENT...: the shell's answer at a terminal of its own has no byte too many and holds WANTED.
at_terminal() {
    local wanted=$1
    shift
    "$python" "$here/bytes_at_terminal.py" /dev/null "${qrysh[@]}" "$@" >terminal || true
    check_terminal "$*"
    grep -qF -- "$wanted" terminal || fail "$* does not show $wanted:" "$(cat -v terminal)"
}

escaped='a\x1B]0;owned\x07b\xC2\x9Bc\u{202E}d'
for mode in box table csv markdown line insert; do
    at_terminal "$escaped" --fixture evil.json --mode $mode -c 'SELECT PSN_NAME FROM PSN_TBL'
done
json='a\u001b]0;owned\u0007b\u009bc\u202ed'
for mode in json jsonl; do
    at_terminal "$json" --fixture evil.json --mode $mode -c 'SELECT PSN_NAME FROM PSN_TBL'
    "${qrysh[@]}" --fixture evil.json --mode $mode -c 'SELECT PSN_NAME FROM PSN_TBL' >out
    grep -qF -- "$json" out || fail "$mode has no escapes in a file" "$(cat -v out)"
done
at_terminal "$escaped" --fixture evil.json -c '.dump PSN_TBL'
at_terminal "$escaped" --fixture evil.json -c '.record PSN_TBL 1'
at_terminal "$escaped" --fixture key.json
at_terminal "${escaped/;owned/}" --trace -c "SELECT PSN_ID FROM PSN_TBL WHERE ${steering/;owned/} = 1"
at_terminal "$escaped" --echo -c "SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME = $steering"
for command in ".load $steering" ".import $steering PSN_TBL" ".db $steering" ".mode $steering" ".schema $steering" \
    ".$steering" ".dump x.$steering" ".fault $steering 1 1 1" "$steering"; do
    at_terminal "$escaped" -c "$command"
done
for option in --image= --check= --fixture= -f --mode= --none; do
    at_terminal 'owned' "$option$scratch/$steering/x"
done
# A line end in a name or a value makes no line of its own.
at_terminal 'a\x0Aerror: forged' -c $'.load a\nerror: forged' --fixture $'a\nerror: forged'
printf 'PSN_ID\n"x\ny"\n' >lines.csv
at_terminal 'not "x\x0Ay"' -c '.import lines.csv PSN_TBL'

# Files and pipes.
"${qrysh[@]}" --fixture evil.json --mode csv -c 'SELECT PSN_NAME FROM PSN_TBL' >out
[ "$(sed -n 2p out)" = "$steering"$'\r' ] || fail 'a pipe does not get the bytes' "$(cat -v out)"
"${qrysh[@]}" --fixture evil.json -c '.dump PSN_TBL' | cat >out
grep -qF -- "'$steering'" out || fail 'a dump does not hold the bytes' "$(cat -v out)"
"${qrysh[@]}" --fixture evil.json -c '.dump PSN_TBL a.csv'
grep -qF -- "$steering" a.csv || fail 'a file does not hold the bytes' "$(cat -v a.csv)"
[ "$failures" -eq 0 ]
