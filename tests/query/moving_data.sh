#!/usr/bin/env bash
# Records moved in and out: imports that write all or nothing, exports that come back as they were, and the files
# of other programs.
#
# usage: moving_data.sh SQLITE COMMAND... (sqlite3's path, or "none"; the shell's full path, behind an emulator
# where it needs one)
set -euo pipefail
sqlite=$1
qrysh=("${@:2}")
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
fixture=$root/examples/office.json

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
failures=0

fail() {
    printf '%s\n' "$@"
    failures=$((failures + 1))
}

# imports FILE WANTED_ERR: an import into nine records of ten, and then what PSN_TBL holds.
import() {
    local wanted=$2
    "${qrysh[@]}" --fixture "$fixture" -c 'DELETE FROM PSN_TBL WHERE PSN_ID = 10' -c ".import $1 PSN_TBL" \
        -c '.mode csv' -c 'SELECT PSN_ID,PSN_NAME FROM PSN_TBL' >out 2>err || true
    # shellcheck disable=SC2053
    [[ $(grep -v '^1 record deleted$' err) == $wanted ]] || fail "$1 said:" "$(cat err)"
}

refused() {
    import "$1" "$2"$'*nothing was imported'
    cmp -s out before.csv || fail "$1 was refused, but changed records"
}

"${qrysh[@]}" --fixture "$fixture" -c 'DELETE FROM PSN_TBL WHERE PSN_ID = 10' -c '.mode csv' \
    -c 'SELECT PSN_ID,PSN_NAME FROM PSN_TBL' >before.csv 2>/dev/null

# One new record, and one whose name changes; quotes, commas, line ends inside quotes, LF and CR LF.
printf '\xEF\xBB\xBFPSN_NAME,PSN_ID\r\n"Smith, ""J.""\r\nand Co",21\n鈴木,1' >good.csv
import good.csv '2 rows imported'
grep -q '^1,鈴木' out && grep -q '^21,"Smith, ""J.""' out || fail 'good.csv did not arrive' "$(cat out)"

printf 'PSN_NAME,PSN_ID\n' >nothing.csv
import nothing.csv '0 rows imported'

# Every fault is named with its place.
printf 'PSN_ID,PSN_NAME\n21,x\n,y\n1.5,z\n65536,w\n0,v\n21,u\n-1,t\n' >numbers.csv
refused numbers.csv $'error: numbers.csv:3:1: PSN_ID is a number, not ""\nerror: numbers.csv:4:1: PSN_ID is a number*numbers.csv:5:1: PSN_ID lies between 0 and 65535\n*numbers.csv:6:1: 0 marks a free record\n*numbers.csv:7:1: the key stands in line 2 already\n*numbers.csv:8:1: PSN_ID lies*'
printf 'PSN_ID,PSN_NAME\n21,鈴木,x\n22\n' >fields.csv
refused fields.csv $'error: fields.csv:2:7: expected 2 fields, not 3\nerror: fields.csv:3:1: expected 2 fields, not 1*'
printf 'PSN_ID,PSN_NAME\n21,"a" b\n' >quotes.csv
refused quotes.csv 'error: quotes.csv:2:7: expected a comma or a line end*'
printf 'PSN_ID,PSN_NAME\n21,"a\n\n' >open.csv
refused open.csv 'error: open.csv:2:4: the quote is not closed*'
printf 'PSN_ID,PSN_NAME\n21,a"b\n' >inner.csv
refused inner.csv 'error: inner.csv:2:5: a field with a quote*'
printf 'PSN_ID,PSN_NAME\n21,a\xFFb\n' >bytes.csv
refused bytes.csv 'error: bytes.csv:2:4: the text is not UTF-8*'
printf 'PSN_ID,PSN_NAME\n21,a\0b\n' >zero.csv
refused zero.csv 'error: zero.csv:2:4: a text must not hold a zero byte*'
printf 'PSN_ID,PSN_NAME\n21,%193s\n' x >long.csv
refused long.csv 'error: long.csv:2:4: PSN_NAME holds at most 192 bytes, this text has 193*'
printf 'PSN_NAMES,PSN_ID,PSN_ID\nx,21,21\n' >header.csv
refused header.csv $'error: header.csv:1:1: PSN_TBL has no column "PSN_NAMES"; did you mean PSN_NAME?\n*1:18: the column PSN_ID is repeated*'
printf 'PSN_NAME\nx\n' >keyless.csv
refused keyless.csv 'error: keyless.csv:1:1: the key column PSN_ID is missing*'
printf 'PSN_ID\n21\n1\n22\n' >many.csv
refused many.csv 'error: many.csv:4:1: PSN_TBL has room for 1 new records, the file holds 2*'
: >empty.csv
refused empty.csv 'error: empty.csv:1:1: expected a line that names columns*'
import missing.csv 'error: missing.csv: cannot be opened: No such file or directory'
printf 'PSN_ID\n%s' "$(seq 100 130 | sed 's/^/x/')" >faults.csv
refused faults.csv $'*\nand 11 more*'

status=0
"${qrysh[@]}" --db department_db -c '.import good.csv EDIT_CNT_TBL' 2>err || status=$?
if [ "$status" -ne 1 ] || ! grep -q 'has no free records' err; then
    fail 'an import into a table without free records was not refused'
fi

# What is dumped as statements makes the same device again.
for db in adbk_db department_db usrac_db log_db; do
    "${qrysh[@]}" --fixture "$fixture" --db "$db" .dump >"$db.sql"
    # Nothing is in these tables but what the dump brings; only the numbers of the edit counter stay.
    "${qrysh[@]}" --fixture "$fixture" --db "$db" -f <(
        sed -n 's/^INSERT INTO \([A-Z0-9_]*\) .*/DROP TABLE \1/p' "$db.sql" | sort -u
        cat "$db.sql"
        echo ".dump again.sql"
    ) >/dev/null 2>err || fail "$db.sql is not read" "$(cat err)"
    cmp -s "$db.sql" again.sql || fail "$db.sql does not come back"
    [ -s "$db.sql" ] || fail "$db.sql is empty"
done

# The last answer, and tables, in every form.
"${qrysh[@]}" --fixture "$fixture" -c 'SELECT PSN_ID,PSN_NAME FROM PSN_TBL WHERE PSN_ID < 3' -c '.export a.csv' \
    -c '.export a.json' -c '.export a.jsonl' -c '.export a.md' -c '.export a.sql' -c '.dump PSN_TBL t.json' \
    -c '.dump all.json' >/dev/null
[ "$(cat a.csv)" = $'PSN_ID,PSN_NAME\r\n1,Sato Kenji\r\n2,鈴木 花子\r' ] || fail 'a.csv differs' "$(cat a.csv)"
[ "$(cat a.jsonl)" = $'{"PSN_ID":1,"PSN_NAME":"Sato Kenji"}\n{"PSN_ID":2,"PSN_NAME":"鈴木 花子"}' ] || fail 'a.jsonl differs'
[ "$(head -n 1 a.sql)" = "INSERT INTO PSN_TBL (PSN_ID, PSN_NAME) VALUES (1, 'Sato Kenji');" ] || fail 'a.sql differs'
[ "$(head -n 2 a.md | tail -n 1)" = '|-------:|------------|' ] || fail 'a.md differs' "$(cat a.md)"
[ "$(wc -l <t.json)" -eq 12 ] || fail 't.json differs'
grep -q '^"PSN_TBL": \[$' all.json || fail 'all.json differs'

# refuses WANTED_ERR LINE...
refuses() {
    local wanted=$1 status=0
    shift
    "${qrysh[@]}" --fixture "$fixture" "$@" >/dev/null 2>err || status=$?
    # shellcheck disable=SC2053
    [[ $status -eq 1 && $(cat err) == $wanted ]] || fail "$* said ($status):" "$(cat err)"
}
refuses 'error: there is no answer yet' '.export x.csv'
refuses 'error: x.xls: the ending must be*' '.dump x.xls'
refuses 'error: a file of this form holds one table*' '.dump x.csv'
refuses 'error: there is no table "PSM_TBL" in adbk_db; did you mean PSN_TBL?' '.dump PSM_TBL x.csv'
refuses 'error: missing/x.csv*' '.dump PSN_TBL missing/x.csv'
# Line ends inside a text, with a carriage return and without, come back from a dump as they are.
lines() { "${qrysh[@]}" --mode json "$@" "SELECT PSN_ID, PSN_NAME FROM PSN_TBL WHERE PSN_ID = 21" 2>err; }
"${qrysh[@]}" --fixture "$fixture" -c 'DELETE FROM PSN_TBL WHERE PSN_ID = 10' -c '.import good.csv PSN_TBL' \
    -c '.dump PSN_TBL lines.sql' 2>/dev/null
lines -f lines.sql >again.json
grep -qF '"PSN_NAME":"Smith, \"J.\"\r\nand Co"' again.json || fail 'a line end did not come back' "$(cat again.json err)"

# A SQLite file: typed columns, primary keys, every value.
if [ "$sqlite" != none ]; then
    "${qrysh[@]}" --fixture "$fixture" -c '.dump device.sqlite' -c 'SELECT COUNT(*) FROM PSN_TBL' -c '.export count.db' >/dev/null
    ask() { "$sqlite" "$1" "$2"; }
    [ "$(ask device.sqlite 'SELECT PSN_ID, PSN_NAME, typeof(PSN_ID), typeof(PSN_NAME) FROM PSN_TBL WHERE PSN_ID = 2')" = \
        '2|鈴木 花子|integer|text' ] || fail 'device.sqlite differs'
    [ "$(ask device.sqlite "SELECT group_concat(name) FROM pragma_table_info('GRPM_TBL') WHERE pk > 0")" = GRP_ID,PSN_ID,SEND_CTGRY ] ||
        fail 'device.sqlite lacks a primary key'
    [ "$(ask device.sqlite "SELECT count(*) FROM sqlite_master WHERE type = 'table'")" = 12 ] || fail 'device.sqlite lacks tables'
    [ "$(ask count.db 'SELECT * FROM PSN_TBL')" = 10 ] || fail 'count.db differs'
    # A file of that name is replaced as a whole.
    "${qrysh[@]}" --fixture "$fixture" --db department_db '.dump device.sqlite'
    [ "$(ask device.sqlite 'SELECT count(*) FROM DEPT_TBL; PRAGMA integrity_check')" = $'101\nok' ] || fail 'device.sqlite was not replaced'
    refuses 'error: missing/x.sqlite: cannot be created: No such file or directory' '.dump missing/x.sqlite'
    # Two records of one key: the edit counter of a device that was never set up.
    "${qrysh[@]}" --db department_db '.dump fresh.sqlite'
    [ "$(ask fresh.sqlite 'SELECT count(*) FROM EDIT_CNT_TBL')" = 2 ] || fail 'fresh.sqlite differs'
fi

if compgen -G '*.tmp' >/dev/null; then
    fail 'temporary files were left behind'
fi
[ "$failures" -eq 0 ]
