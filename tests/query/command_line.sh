#!/usr/bin/env bash
# The shell's command line: options, statements as arguments, exit status, the two output streams.
#
# usage: command_line.sh COMMAND... (the shell's full path, behind an emulator where it needs one)
set -euo pipefail
qrysh=("$@")
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
fixture=$root/examples/office.json

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
failures=0

# expect STATUS OUT ERR ARGUMENT...: runs the shell and compares its exit status and both streams with patterns.
expect() {
    local status=0 wanted_status=$1 wanted_out=$2 wanted_err=$3
    shift 3
    "${qrysh[@]}" "$@" >out 2>err </dev/null || status=$?
    # shellcheck disable=SC2053
    if [ "$status" -ne "$wanted_status" ] || [[ $(cat out) != $wanted_out ]] || [[ $(cat err) != $wanted_err ]]; then
        printf 'qrysh'; printf ' %q' "$@"; printf ': status %s\n' "$status"
        cat out err
        failures=$((failures + 1))
    fi
}

count='SELECT COUNT(*) FROM PSN_TBL'
refused='SELECT * FROM PSN_TBL'

expect 0 $'COUNT(\\*)\n--------\n       0\n(1 row)' '' "$count"
expect 0 $'COUNT(\\*)\n--------\n      10\n(1 row)' '' --fixture "$fixture" "$count"
expect 0 $'COUNT(\\*)\r\n101\r' '' --fixture "$fixture" --db department_db --mode csv 'SELECT COUNT(*) FROM DEPT_TBL;'
expect 0 $'\\[\n  {"COUNT(\\*)":0}\n]' '' --mode json "$count"
expect 0 $'COUNT(\\*)\r\n0\r' $'qrysh> .mode csv\nqrysh> SELECT*' --echo '.mode csv' "$count"
expect 0 '' ''

# Lines come from -c and -f as they stand, then from the arguments behind them; standard input only without any, or as -.
printf 'SELECT COUNT(*) FROM GRP_TBL\n.mode csv\n' >lines.sql
expect 0 $'COUNT(\\*)\r\n10\r\nCOUNT(\\*)\n--*\n       0\n(1 row)\nCOUNT(\\*)\r\n10\r' '' --fixture "$fixture" \
    -c '.mode csv' -c "$count" -c '.mode table' -f lines.sql "$count"
expect 0 $'COUNT(\\*)\r\n10\r\nCOUNT(\\*)\r\n0\r\nCOUNT(\\*)\n-*' '' --fixture "$fixture" \
    -f <(echo .mode csv) -c "$count" -f lines.sql -c '.mode table' -f <(echo "$count")
expect 1 '' 'error: missing.sql: *' -f missing.sql
if [ "$(printf '.mode csv\n%s\n' "$count" | "${qrysh[@]}" -c '.mode json' -f - "$count")" != $'COUNT(*)\r\n0\r\nCOUNT(*)\r\n0\r' ]; then
    echo "-f - does not read standard input in its turn"
    failures=$((failures + 1))
fi

# Errors in files and standard input name the line on which the statement begins; notes and answers do not.
printf '%s\n\n-- a comment\nSELECT X\nFROM PSN_TBL;\n.nothing\nSELECT PSN_ID FROM\n.tables\n' "$count" >faulty.sql
expect 1 '*' $'*\nerror: faulty.sql:4: QRY_LIB_*\nerror: faulty.sql:6: there is no command*\nerror: faulty.sql:7: *not run*' \
    -f faulty.sql
expect 1 'COUNT*' $'*\nerror: faulty.sql:4: *' -c .read\ faulty.sql --bail
expect 1 '' $'error: there is no command .x*' -f <(echo "$count" >/dev/null) -c .x
status=0
"${qrysh[@]}" <faulty.sql >out 2>err || status=$?
if [ "$status" -ne 1 ] || [ "$(grep -c '^error: stdin:[467]: ' err)" -ne 3 ]; then
    echo "errors in standard input do not name their lines"
    cat err
    failures=$((failures + 1))
fi

# Who reads JSON gets errors so too: the companion's object on one line.
expect 1 '{"ok":false,"kind":"select","code":56069,"name":"QRY_LIB_INVALID_ARGUMENT",*"refusal":{"from":7,"to":8,"text":"PSN_TBL has no column \\"X\\"","hint":""}}' \
    '' --mode json 'SELECT X FROM PSN_TBL'
expect 1 $'{"ok":false,"kind":"insert",*"code":56064,*}\n\\[\n  {"COUNT(\\*)":0}\n\\]' '' --mode json 'INSERT INTO PSN_TBL (PSN_ID) VALUES (x)' "$count"
expect 1 $'{"ok":false,*"hint":"keywords are upper case"*}' '' --strict --mode jsonl 'DELETE FROM PSN_TBL WHERE PSN_ID = 1 and X'
expect 1 $'{"ok":false,*}' '' --mode json '.explain SELECT X'

# A script may begin with a byte-order mark, and its statements with tabs.
expect 0 $'COUNT(\\*)\r\n0\r\nCOUNT(\\*)\r\n0\r' '' -f <(printf '\xEF\xBB\xBF.mode csv\n\t%s\n \t SELECT COUNT(*)\n\tFROM PSN_TBL;\n' "$count")

# Several statements may stand on a line, unless its quotes are in doubt.
expect 0 $'COUNT(\\*)\r\n10\r\nCOUNT(\\*)\r\n9\r' '' --fixture "$fixture" --mode csv \
    "$count; DELETE FROM PSN_TBL WHERE PSN_NAME = 'Sato Kenji';$count; -- and no more"
expect 0 $'COUNT(\\*)\r\n0\r' '' --fixture "$fixture" --mode csv "$count WHERE PSN_NAME = 'x; DROP TABLE PSN_TBL'"
expect 0 $'COUNT(\\*)\r\n0\r\nCOUNT(\\*)\r\n10\r' 'note: *was dropped; a line holds one statement*' --fixture "$fixture" --mode csv \
    "$count WHERE PSN_NAME = 'Maeve O'Hara'; DROP TABLE PSN_TBL" "$count"
expect 1 $'COUNT(\\*)\r\n10\r' '*' --bail --fixture "$fixture" --mode csv "$count; SELECT X FROM PSN_TBL; DROP TABLE PSN_TBL"

# An argument may hold several lines; its end ends a statement, and so does a file's. A forgotten ";" is an error.
expect 0 $'COUNT(\\*)\r\n2\r' '' --fixture "$fixture" --mode csv $'SELECT COUNT(*)\nFROM PSN_TBL\n  WHERE PSN_ID < 3'
expect 0 $'COUNT(\\*)\r\n10\r\nCOUNT(\\*)\r\n0\r' '' --fixture "$fixture" --mode csv \
    -c $'SELECT COUNT(*)\nFROM PSN_TBL;\n\nDROP TABLE PSN_TBL' -c $'.db adbk_db\n' -f <(printf 'SELECT COUNT(*)\r\nFROM PSN_TBL')
expect 1 $'COUNT(\\*)\r\n10\r' $'  DELETE FROM PSN_TBL\n *^ the statement does not end here: write ; *\nerror: */*:1: *: not run' --fixture "$fixture" \
    --mode csv -f <(printf 'DELETE FROM\nPSN_TBL\nSELECT COUNT(*) FROM PSN_TBL\n')
expect 1 '' $'*does not end here*\nerror: * not run' --bail $'SELECT\n.tables'

# A change of every record without ";" goes on with a line that begins with WHERE, whatever stands between, and with no
# other.
expect 0 $'COUNT(\\*)\r\n9\r' '' --fixture "$fixture" --mode csv \
    -f <(printf 'DELETE FROM PSN_TBL\n\n-- some\n  WHERE PSN_ID = 1\nSELECT COUNT(*) FROM PSN_TBL\n')
expect 0 $'COUNT(\\*)\r\n0\r' '' --fixture "$fixture" --mode csv \
    -f <(printf 'DELETE FROM PSN_TBL\nSELECT COUNT(*) FROM PSN_TBL\n')
expect 1 $'COUNT(\\*)\r\n10\r' $'*write WHERE\nerror: *' --fixture "$fixture" --mode csv \
    -f <(printf 'DELETE FROM PSN_TBL\nwhere PSN_ID = 1\nSELECT COUNT(*) FROM PSN_TBL\n')
expect 1 $'COUNT(\\*)\r\n0\r' '*no statement begins so*' --fixture "$fixture" --mode csv \
    -f <(printf 'DELETE FROM PSN_TBL;\nWHERE PSN_ID = 1\nSELECT COUNT(*) FROM PSN_TBL\n')
expect 0 $'COUNT(\\*)\r\n1\r' '' --fixture "$fixture" --mode csv \
    -f <(printf 'UPDATE PSN_TBL SET INTEG_ID = 7\nWHERE PSN_ID = 1\nSELECT COUNT(*) FROM PSN_TBL WHERE INTEG_ID = 7\n')

# A refusal shows its place first, then code and name; the trace only where it is asked for, and colours on no pipe.
expect 1 '' $'  SELECT \\* FROM PSN_TBL\n         ^ columns are named one by one: write *\nerror: QRY_LIB_INVALID_ARGUMENT (0xDB05): *' \
    "$refused"
if [ "$(wc -l <err)" -ne 3 ] || grep -q $'\x1b' err; then
    echo "a refusal says more than place, code and name"
    cat err
    failures=$((failures + 1))
fi
expect 1 '' $'  INSERT*\n  *^ expected a number *: write *\nerror: QRY_LIB_NOT_ACCEPTED (0xDB00): not run' \
    'INSERT INTO PSN_TBL (PSN_ID) VALUES (x)'
expect 1 '' $'  tables\n  ^^^^^^ no statement begins with "tables": did you mean .tables[?]\nerror: *' tables

# Notes go to standard error; a strict shell runs nothing that gets one.
dropped='DELETE FROM PSN_TBL WHERE PSN_ID = 1 and PSN_ID = 99'
expect 0 $'COUNT(\\*)\r\n9\r' 'note: " and PSN_ID = 99" was read as part of the value; keywords are upper case' \
    --fixture "$fixture" --mode csv "$dropped" "$count"
expect 1 $'COUNT(\\*)\r\n10\r' 'note: *error: *: not run: a note stands against it' --fixture "$fixture" --mode csv --strict \
    "$dropped" "$count"
expect 1 $'COUNT(\\*)\r\n10\r' '*error: *: not run: *' --fixture "$fixture" --mode csv -c '.strict on' "$dropped" "$count"
expect 0 $'COUNT(\\*)\r\n9\r' 'note: *' --fixture "$fixture" --mode csv --strict -c '.strict off' "$dropped" "$count"

# What was changed is counted, what failed half-way included.
insert_again="INSERT INTO PSN_TBL (PSN_ID, PSN_NAME) VALUES (5, 'Other')"
expect 0 '' $'1 record replaced (key 5 was in use)' --fixture "$fixture" "$insert_again"
expect 0 '' $'1 record deleted\n1 record added' --fixture "$fixture" 'DELETE FROM PSN_TBL WHERE PSN_ID = 5' "$insert_again"
expect 0 '' '10 records changed; 10 now have the same key' --fixture "$fixture" 'UPDATE PSN_TBL SET PSN_ID = 3;'
expect 0 '' '0 records deleted' --fixture "$fixture" 'DELETE FROM PSN_TBL WHERE PSN_ID = 99'
expect 0 '' '10 records deleted' --fixture "$fixture" 'DROP TABLE PSN_TBL'
expect 1 '' '*before this failed: 2 records deleted' --fixture "$fixture" -c '.fault init_table 2 1 0x5243' 'DELETE FROM PSN_TBL;'

# Scripts may be kept from changing every record.
for change in 'DELETE FROM PSN_TBL' 'DROP TABLE PSN_TBL;' 'UPDATE PSN_TBL SET INTEG_ID = 1'; do
    expect 1 '' '*this takes every record, and safe updates are on: write a condition*error: * not run' --safe-updates --fixture "$fixture" "$change"
done
expect 0 '' '1 record deleted' --safe-updates --fixture "$fixture" 'DELETE FROM PSN_TBL WHERE PSN_ID = 1'

# Files of lines: one that reads itself ends somewhere, --bail ends all of them, .quit leaves the shell, and what was
# refused counts.
echo '.read itself.sql' >itself.sql
expect 1 '' 'error: itself.sql:1: itself.sql: files read files 16 deep' '.read itself.sql'
printf 'DELETE FROM PSN_TBL\nWHERE PSN_ID = 1\n.nothing\n.changes off\n' >script.sql
expect 1 $'COUNT(\\*)\r\n9\r' $'1 record deleted\nerror: script.sql:3: there is no command .nothing*' --sample --mode csv -c '.changes on' \
    '.read script.sql' "$count"
expect 1 '' '*error: script.sql:3: there is no command .nothing*' --bail --sample --mode csv '.read script.sql' "$count"
echo .quit >script.sql
expect 0 '' '' '.read script.sql' "$count"
HOME=$scratch expect 0 '' '' '.read ~/script.sql' "$count"

# A file of answers is its owner's alone: records hold passwords.
expect 0 '' '' --sample '.output answers.txt' "$count"
if [ "$(stat -c %a answers.txt)" != 600 ] || ! grep -q '^      10$' answers.txt; then
    echo "a file of answers is everybody's, or is not written"
    failures=$((failures + 1))
fi

# What is asked for may be refused as a whole.
expect 1 '' '*only SELECT may run here*error: * not run' --readonly 'DELETE FROM PSN_TBL'
expect 1 '' '*only SELECT may run here*error: * not run' --readonly 'UPDATE PSN_TBL SET PSN_ID = 1'
expect 1 '' 'error: .load changes records*' --readonly '.load x.json'
# A sweep changes a copy.
expect 0 'CALL,*' '' --readonly --mode csv '.fault sweep DELETE FROM PSN_TBL'
expect 0 $'COUNT*' '' --readonly "$count"
for command in '.load x.json' '.save x.json' '.import x.csv PSN_TBL' '.export x.csv' '.read x.sql' '.once x' '.output x' \
    '.open x.img'; do
    expect 1 '' 'error: .* touches files*' --safe "$command"
done
expect 1 '' 'error: .dump to a file touches files*' --safe '.dump x.sql'
expect 0 '' '' --safe '.dump PSN_TBL'

# --bail stops at the first error.
expect 1 '' '*error: *' --bail "$refused" "$count"
expect 1 '' '*error: *' --bail -c "$refused" "$count"

# A failure anywhere is the run's, and later statements still run.
expect 1 $'COUNT(\\*)\n--------\n       0\n(1 row)' '*error: QRY_LIB_INVALID_ARGUMENT (0xDB05): *' "$refused" "$count"
expect 1 '' '*exec_select_proc():\[Return\]:(408) (0x0000DB05)  -- a selected column is not in the table, "\*" included (0xDB05)'*'error: *' --trace "$refused"
expect 1 '' 'error: there is no command .nothing*' .nothing
expect 1 '' 'error: *' .nothing .quit
expect 0 '' '' .quit .nothing

expect 1 '' 'error: there is no database "nowhere"*' --db nowhere "$count"
expect 1 '' 'error: there is no mode "xml"*' --mode xml "$count"
expect 1 '' 'error: *missing.json*' --fixture missing.json "$count"
expect 1 '' '*--nothing*' --nothing
expect 0 '*--bail*.help lists the commands*' '' --help
if [ "$("${qrysh[@]}" --help | wc -l)" -gt 24 ] || [ "$("${qrysh[@]}" --help | wc -L)" -gt 80 ]; then
    echo "--help does not fit on a screen"
    failures=$((failures + 1))
fi
if [ "$("${qrysh[@]}" .help | wc -L)" -gt 80 ]; then
    echo ".help does not fit on a terminal"
    failures=$((failures + 1))
fi
expect 0 '[0-9]*.[0-9]*.[0-9]*' '' --version

# Device images: created where that is asked for and nowhere else, shared by later runs and by shells at once, examined,
# refused.
insert="INSERT INTO PSN_TBL (PSN_ID, PSN_NAME) VALUES (4, 'Ito')"
name='SELECT PSN_NAME FROM PSN_TBL'
for choice in device.img ./device.img '--image device.img' '--readonly --image device.img'; do
    # shellcheck disable=SC2086
    expect 1 '' 'error: *device.img: is not there; --new creates an image' $choice "$insert"
done
expect 1 '' 'error: a new image is a change: *--readonly' --readonly --new device.img "$name"
QRYLIB_IMAGE=device.img expect 1 '' 'error: device.img: is not there; *--readonly' --readonly "$name"
if [ -e device.img ]; then
    echo "a file was made that nobody asked for"
    failures=$((failures + 1))
fi
expect 0 '' '1 record added' --new device.img "$insert"
expect 1 '' 'error: device.img: is there already; --image opens it' --new device.img "$insert"
expect 1 '' 'error: one device is opened: *' --new other.img --image device.img "$name"
expect 1 '' 'error: one device is opened: *' --sample device.img "$name"
expect 0 $'PSN_NAME\r\nIto\r' '' --readonly --mode csv --image device.img "$name"
QRYLIB_IMAGE=own.img expect 0 '' '1 record added' "$insert"
QRYLIB_IMAGE=own.img expect 0 $'PSN_NAME\r\nIto\r' '' --readonly --mode csv "$name"
expect 0 $'PSN_NAME\r\nIto\r' '' --mode csv ./device.img "$name"
expect 0 $'PSN_NAME\r\nIto\r' '' --mode csv --image device.img "$name"
expect 0 $'PSN_NAME\r' '' --mode csv "$name"
cp device.img copied
expect 0 $'PSN_NAME\r\nIto\r' '' --mode csv copied "$name"
expect 0 '*note: adbk_db.PSN_TBL: 1 of 10 records in use*' '' --check device.img
expect 1 '' 'error: missing.img: cannot be opened: *' --check missing.img
expect 1 '' 'error: .: is a folder' --image . "$name"
expect 1 '' 'error: */err: is too short for a device image: *' "$PWD/err" "$name"
printf x | dd of=copied bs=1 seek=3 conv=notrunc status=none
expect 1 '' 'error: copied: is no device image' copied "$name"
expect 1 '' 'error: copied: is no device image' --check copied

# The sample device is private memory unless a new image is to hold it; an image of the environment stays as it is.
expect 0 $'COUNT(\\*)\r\n10\r' '' --sample --mode csv "$count"
expect 0 '' '10 records deleted' --sample 'DROP TABLE PSN_TBL'
QRYLIB_IMAGE=own.img expect 0 $'COUNT(\\*)\r\n10\r' '' --sample --mode csv "$count"
expect 0 $'PSN_NAME\r\nIto\r' '' --mode csv own.img "$name"
expect 0 $'COUNT(\\*)\r\n10\r' '' --sample --new office.img --mode csv "$count"
expect 0 $'COUNT(\\*)\r\n10\r' '' --mode csv office.img "$count"

# One shell stays open while another writes.
coproc waiting { "${qrysh[@]}" --mode csv device.img 2>&1; }
echo "$name" >&"${waiting[1]}"
read -r -u "${waiting[0]}" _
read -r -u "${waiting[0]}" before
expect 0 '' '1 record changed' device.img "UPDATE PSN_TBL SET PSN_NAME = 'Mori' WHERE PSN_ID = 4"
echo "$name" >&"${waiting[1]}"
read -r -u "${waiting[0]}" _
read -r -u "${waiting[0]}" after
echo .quit >&"${waiting[1]}"
if [ "$before/$after" != $'Ito\r/Mori\r' ]; then
    echo "a shell did not see another's change: $before/$after"
    failures=$((failures + 1))
fi

# A zero byte does not end a statement unseen.
status=0
printf 'DELETE FROM PSN_TBL\0WHERE PSN_ID = 1\n' | "${qrysh[@]}" >out 2>err || status=$?
if [ "$status" -ne 1 ] || [ -s out ] || ! grep -q 'zero byte' err; then
    echo "a zero byte was not refused"
    failures=$((failures + 1))
fi

# Lines may end in CR LF.
if [ "$(printf '.mode csv\r\nSELECT COUNT(*) FROM PSN_TBL;\r\n' | "${qrysh[@]}" 2>&1)" != $'COUNT(*)\r\n0\r' ]; then
    echo "a carriage return at a line's end was not dropped"
    failures=$((failures + 1))
fi

# An answer that cannot be written is a failure.
if "${qrysh[@]}" "$count" >/dev/full 2>err; then
    echo "a full output went unnoticed"
    failures=$((failures + 1))
fi

# What a statement cost is said beside its answer, and also of one that is refused.
expect 0 $'COUNT*' 'time 0.?????? s; 1 rows; * blocks, at most * bytes at once; calls: alloc *' '.timer on' "$count"
expect 1 '' $'*error: *\ntime 0.?????? s; 0 rows; *' '.timer on' "$refused"
expect 0 $'COUNT*' '' '.timer on' '.timer off' "$count"

[ "$failures" -eq 0 ]
