#!/usr/bin/env bash
# The roomy device: a program of its own behind --roomy, capacities that follow the device's, tables and joins that the
# device keeps empty, images that each of the two tells from the other's.
#
# usage: roomy.sh COMMAND... (the shell's full path; qrysh-roomy lies beside it)
set -euo pipefail
qrysh=("$@")

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"

# expect STATUS PATTERN ARGUMENT...: runs the shell and compares its exit status and all that it prints.
expect() {
    local status=0
    "${qrysh[@]}" "${@:3}" >printed 2>&1 </dev/null || status=$?
    # shellcheck disable=SC2053
    if [ "$status" -ne "$1" ] || [[ $(cat printed) != $2 ]]; then
        printf 'qrysh'; printf ' %q' "${@:3}"; printf ': status %s\n' "$status"
        cat printed
        exit 1
    fi
}

# Every capacity of 0 is 100, and every other is the device's.
columns=$(printf '.db %s\n.schema\n' adbk_db department_db usrac_db log_db)
"${qrysh[@]}" --mode list "$columns" | sed 's/|0$/|100/' >wanted
"${qrysh[@]}" --roomy --mode list "$columns" | diff wanted -
if [ "$(grep -c '|100$' wanted)" -lt 50 ]; then
    echo "the device has hardly a table without records"
    exit 1
fi

# A table without records on the device takes some, and joins.
email="INSERT INTO EMAIL_TBL (PSN_ID, EMAIL_ADDR) VALUES (2, 'hanako@example.org')"
join='SELECT PSN_TBL.PSN_NAME, EMAIL_TBL.EMAIL_ADDR FROM PSN_TBL, EMAIL_TBL WHERE PSN_TBL.PSN_ID = EMAIL_TBL.PSN_ID'
expect 1 '*this device keeps no EMAIL_TBL records*error: QRY_LIB_NO_FREE_ENTRY*' --sample "$email"
expect 0 $'1 record added\n*鈴木 花子  hanako@example.org\n(1 row)' --roomy --sample "$email" "$join"
rows=$(for i in $(seq 1 100); do echo "INSERT INTO EMAIL_TBL (PSN_ID, EMAIL_ADDR) VALUES ($i, 'x')"; done)
expect 0 $'COUNT(\\*)\r\n100\r' --roomy --mode csv "$rows" 'SELECT COUNT(*) FROM EMAIL_TBL'

# An image says whose its capacities are, also to the program that cannot open it.
expect 0 '1 record added' --roomy --new roomy.img "$email"
expect 0 $'note: the capacities are the roomy device\'s: 100 records*note: adbk_db.EMAIL_TBL: 1 of 100 records in use*' \
    --roomy --check roomy.img
expect 1 $'error: roomy.img: *another layout: its capacities are the roomy device\'s, qrysh --roomy opens it' --check roomy.img
expect 1 'error: roomy.img: *qrysh --roomy opens it' roomy.img "$join"
expect 0 '(0 rows)' --new device.img --mode table '.headers off' 'SELECT PSN_ID FROM PSN_TBL'
expect 0 $'note: the capacities are the device\'s own*note: adbk_db.PSN_TBL: 0 of 10 records in use*' --check device.img
expect 1 $'error: device.img: *another layout: its capacities are the device\'s own, qrysh opens it' --roomy --check device.img

# Without the program there is a sentence.
cp "${qrysh[0]}" qrysh
qrysh=(./qrysh)
expect 1 'error: qrysh-roomy: No such file or directory; a full build makes it beside the shell, no package has it' --roomy .tables
