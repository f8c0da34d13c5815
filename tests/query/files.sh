#!/usr/bin/env bash
# Files that the user names: what is replaced, what is written through, what is refused, and what is asked.
#
# usage: files.sh SQLITE PYTHON COMMAND... (sqlite3's and python3's paths, or "none"; the shell's full path, behind an
# emulator where it needs one)
set -euo pipefail
sqlite=$1
python=$2
qrysh=("${@:3}")
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
fixture=$here/../../examples/office.json

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
failures=0

fail() {
    printf '%s\n' "$@"
    failures=$((failures + 1))
}

# runs STATUS ERR ARGUMENT...: what the shell ends with, and says on standard error.
runs() {
    local wanted=$1 err=$2 status=0
    shift 2
    timeout 60 "${qrysh[@]}" --fixture "$fixture" "$@" >out 2>err </dev/null || status=$?
    [[ $status -eq $wanted && $(cat err) == "$err" ]] || fail "$* said ($status):" "$(cat err)"
}

# Every command that writes, over what stands there: a file is replaced with a sentence, and silently by --force.
for command in '.save a.json' '.dump a.json' '.export a.json'; do
    echo old >a.json
    chmod 640 a.json
    runs 0 'a.json is there and is replaced' --mode json -c 'SELECT PSN_ID FROM PSN_TBL' -c "$command"
    grep -q '{' a.json || fail "$command wrote nothing"
    [ "$(stat -c %a a.json)" = 640 ] || fail "$command did not keep the mode"
    runs 0 '' --mode json --force -c 'SELECT PSN_ID FROM PSN_TBL' -c "$command"
    rm a.json
    runs 0 '' --mode json -c 'SELECT PSN_ID FROM PSN_TBL' -c "$command"
    [ "$(stat -c %a a.json)" = 600 ] || fail "$command made a file that others read"
done

# A link is followed; what is no file is written through and stays what it is.
ln -s a.json link.json
runs 0 'link.json is there and is replaced' -c '.save link.json'
[ -L link.json ] || fail 'a link was replaced'
cmp -s a.json link.json || fail 'a link was not followed'
ln -s /dev/full full.json
for command in '.save full.json' '.dump full.json' '.dump PSN_TBL full.json'; do
    runs 1 'error: /dev/full: cannot be written: No space left on device' -c "$command"
done
[ -c /dev/full ] || fail '/dev/full is no device any more'
mkfifo pipe.sql
cat pipe.sql >through.sql &
runs 0 '' -c '.dump PSN_TBL pipe.sql'
wait $!
[ -p pipe.sql ] || fail 'a pipe was replaced'
[ "$(grep -c '^INSERT INTO PSN_TBL' through.sql)" = 10 ] || fail 'a pipe was not written through'
ln -s /dev/stdout stdout.csv
runs 0 '' -c '.dump PSN_TBL stdout.csv' -c 'SELECT COUNT(*) FROM PSN_TBL'
[[ $(wc -l <out) -eq 15 && $(head -n 1 out) = INTEG_ID,PSN_ADDR_ID,* ]] || fail 'standard output was not written through' "$(cat out)"
runs 1 'error: .: cannot be replaced: it is a folder' -c '.save .'

# The database of another program keeps its tables; ours is replaced.
if [ "$sqlite" != none ]; then
    "$sqlite" theirs.sqlite 'CREATE TABLE THEIRS (A)'
    for command in '.dump theirs.sqlite' '.dump PSN_TBL theirs.sqlite' '.save theirs.sqlite' '.export theirs.sqlite'; do
        runs 1 'error: theirs.sqlite: is a SQLite file of another program, which is not replaced' --mode json \
            -c 'SELECT PSN_ID FROM PSN_TBL' -c "$command"
    done
    [ "$("$sqlite" theirs.sqlite .tables)" = THEIRS ] || fail 'the database of another program was changed'
    runs 0 '' -c '.dump PSN_TBL ours.sqlite'
    runs 0 'ours.sqlite is there and is replaced' -c '.dump PSN_TBL ours.sqlite'
    [ "$("$sqlite" ours.sqlite 'SELECT COUNT(*) FROM PSN_TBL; PRAGMA integrity_check')" = $'10\nok' ] || fail 'ours.sqlite differs'
    runs 0 '' --force -c '.dump PSN_TBL theirs.sqlite'
    [ "$("$sqlite" theirs.sqlite .tables)" = PSN_TBL ] || fail '--force did not replace a database'
fi

# A file that is read: a pipe is not waited for, a device not read.
for file in pipe.sql /dev/zero; do
    runs 1 "error: $file: is not a file" -c ".import $file PSN_TBL"
    runs 1 "error: $file: is not a file" -c ".load $file"
done

# Texts that a spreadsheet takes for formulas.
printf '%s\n' "UPDATE PSN_TBL SET PSN_NAME = '=1+1' WHERE PSN_ID = 1" "UPDATE PSN_TBL SET PSN_NAME = '+1' WHERE PSN_ID = 2" \
    "UPDATE PSN_TBL SET PSN_NAME = '-1' WHERE PSN_ID = 3" "UPDATE PSN_TBL SET PSN_NAME = '@a' WHERE PSN_ID = 4" \
    $'UPDATE PSN_TBL SET PSN_NAME = \'\t=1\' WHERE PSN_ID = 5' $'UPDATE PSN_TBL SET PSN_NAME = \'\r=1\' WHERE PSN_ID = 6' \
    "UPDATE PSN_TBL SET PSN_NAME = 'a=1' WHERE PSN_ID = 7" '.mode csv' 'SELECT PSN_NAME FROM PSN_TBL WHERE PSN_ID < 8' \
    '.export formulas.csv' >formulas
formulas=$'PSN_NAME\r\n\'=1+1\r\n\'+1\r\n\'-1\r\n\'@a\r\n\'\t=1\r\n"\'\r=1"\r\na=1\r'
"${qrysh[@]}" --fixture "$fixture" --csv-safe -f formulas >out 2>err || fail 'formulas failed' "$(cat err)"
[ "$(cat out)" = "$formulas" ] || fail 'formulas are printed' "$(cat -A out)"
[ "$(cat formulas.csv)" = "$formulas" ] || fail 'formulas are exported' "$(cat -A formulas.csv)"
"${qrysh[@]}" --fixture "$fixture" --force -f formulas >out 2>err
[ "$(cat out)" = "${formulas//\'/}" ] || fail 'texts are guarded without --csv-safe' "$(cat -A out)"

# At a terminal somebody is asked.
if [ "$python" != none ]; then
    export QRYSH_HISTORY=$scratch/history EDITRC=/dev/null TERM=dumb
    echo old >asked.json
    at_terminal() { "$python" "$here/bytes_at_terminal.py" lines "${qrysh[@]}" "$@" >out || true; }
    printf '%s\n' '.save asked.json' no '.quit' >lines
    at_terminal
    grep -q 'asked.json is there; type yes to replace it: no' out || fail 'nothing was asked' "$(cat out)"
    [ "$(cat asked.json)" = old ] || fail 'a file was replaced after a no'
    printf '%s\n' '.save asked.json' yes '.quit' >lines
    at_terminal
    grep -q '{' asked.json || fail 'a file was not replaced after a yes' "$(cat out)"
    echo old >asked.json
    printf '%s\n' '.save asked.json' '.quit' >lines
    at_terminal --force
    grep -q '{' asked.json || fail '--force did not replace' "$(cat out)"
fi

if compgen -G '*.tmp' >/dev/null; then
    fail 'temporary files were left behind'
fi
[ "$failures" -eq 0 ]
