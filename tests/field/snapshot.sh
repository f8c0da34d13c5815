#!/usr/bin/env bash
# qrylib-snapshot on a device image: written, masked, compared by the shell, put back.
#
# usage: snapshot.sh ROOT SNAPSHOT SHELL [EMULATOR...]
set -euo pipefail
fixture=$1/examples/office.json
snapshot=("${@:4}" "$2")
qrysh=("${@:4}" "$3")
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
failures=0

# expect STATUS OUT ERR COMMAND...: runs it and compares its exit status and both streams with patterns.
expect() {
    local status=0 wanted_status=$1 wanted_out=$2 wanted_err=$3
    shift 3
    "$@" >out 2>err </dev/null || status=$?
    # shellcheck disable=SC2053
    if [ "$status" -ne "$wanted_status" ] || [[ $(cat out) != $wanted_out ]] || [[ $(cat err) != $wanted_err ]]; then
        printf '%q ' "$@"; printf ': status %s\n' "$status"
        cat out err
        failures=$((failures + 1))
    fi
}

export QRYLIB_IMAGE=$scratch/device.img
expect 0 '' '' "${qrysh[@]}" --fixture "$fixture" .quit
expect 0 '{*"snapshot": {*"capacities"*"masked"*"DEPT_CODE"*}' '' "${snapshot[@]}"
expect 0 '' '' "${snapshot[@]}" masked.json
expect 0 '' '' "${snapshot[@]}" --with-secrets open.json
[ "$(stat -c %a masked.json)" = 600 ] || { echo "others may read a snapshot"; failures=$((failures + 1)); }
for code in D1010 D1020; do
    [[ $(cat open.json) == *$code* && $(cat masked.json) != *$code* ]] ||
        { echo "$code is not masked, or was not there"; failures=$((failures + 1)); }
done
expect 0 '{*"PSN_TBL": 10*"DEPT_TBL": 101*}' '' "${snapshot[@]}" --db department_db --table adbk_db.PSN_TBL
expect 1 '' 'qrylib-snapshot: there is no database X' "${snapshot[@]}" --db X
expect 1 '' 'qrylib-snapshot: no/where: *' "${snapshot[@]}" no/where
expect 2 '' '*--dry-run requires --restore*' "${snapshot[@]}" --dry-run
expect 2 '' '*excludes*' "${snapshot[@]}" --restore open.json --with-secrets

# The shell tells what differs, and where a mask leaves no telling.
expect 0 '' 'note: department_db.DEPT_TBL, DEPT_CODE: masked in 101 records*' "${qrysh[@]}" --diff masked.json open.json
expect 0 '' '1 record changed*1 record deleted' "${qrysh[@]}" "UPDATE PSN_TBL SET PSN_NAME = 'Neu' WHERE PSN_ID = 1;" \
    'DELETE FROM PSN_TBL WHERE PSN_ID = 2;'
expect 0 '' '' "${snapshot[@]}" --with-secrets later.json
expect 1 '*adbk_db.PSN_TBL*PSN_ID=1*PSN_NAME*Sato Kenji*Neu*PSN_ID=2*(no record)*' '' "${qrysh[@]}" --diff open.json later.json
expect 1 '*"OLD":"Sato Kenji","NEW":"Neu"*' '' "${qrysh[@]}" --mode json --diff open.json later.json
expect 1 '' 'error: missing.json: *' "${qrysh[@]}" --diff open.json missing.json
printf '[]' >list.json
expect 1 '' 'error: the second text is no fixture' "${qrysh[@]}" --diff open.json list.json

# Told before it is done; what is masked stays.
expect 0 '*"Neu" -> "Sato Kenji"*would change*masked values stay as they are*' '' "${snapshot[@]}" --restore masked.json --dry-run
expect 1 '*"OLD":"Sato Kenji","NEW":"Neu"*' '' "${qrysh[@]}" --mode json --diff open.json later.json
expect 0 '*"Neu" -> "Sato Kenji"*to change*done' '' "${snapshot[@]}" --restore masked.json
expect 0 '' '' "${snapshot[@]}" --with-secrets again.json
expect 0 '' '' "${qrysh[@]}" --diff open.json again.json
printf '{"format":3}' >third.json
expect 1 '' 'qrylib-snapshot: the text: format: is not 1' "${snapshot[@]}" --restore third.json

[ "$failures" -eq 0 ] || exit 1
