#!/usr/bin/env bash
# No program or library but libqrylib.so.1 holds a copy of a function that it exports: what passes its interface can be
# seen there. usage: one_copy.sh LIBRARY FILE...
set -euo pipefail
names() {
    nm "$@" | awk '$2 ~ /^[TtWwVvi]$/ { sub(/@.*/, "", $3); print $3 }' | sort -u
}

exported=$(names -D --defined-only "$1")
[ -n "$exported" ]
for file in "${@:2}"; do
    copies=$(comm -12 <(printf '%s\n' "$exported") <(names --defined-only "$file"))
    if [ -n "$copies" ]; then
        printf '%s holds a copy of:\n%s\n' "$file" "$copies" >&2
        exit 1
    fi
done
