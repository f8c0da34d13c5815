#!/usr/bin/env bash
# The programs' man pages lint clean and name their options and no others; docs/field.md names the columns that hold
# secrets.
#
# usage: pages.sh MANDOC ROOT SNAPSHOT REPLAY [EMULATOR...]
set -euo pipefail
mandoc=$1
root=$2
emulator=("${@:5}")
wrong=0
"$mandoc" -Tlint -W warning "$root"/docs/qrylib-*.1

for program in "$3" "$4"; do
    page=$root/docs/$(basename "$program").1
    diff <("${emulator[@]}" "$program" --help | grep -oE '^ +(-h,)?--[-a-z]+' | grep -v -e --help | tr -d ' ' | sort -u) \
        <(grep -oE '^\.It Fl -[-a-z]+' "$page" | sed 's/.*Fl /-/' | sort -u) ||
        { echo "$(basename "$program") (<) and its page (>) differ"; wrong=1; }
done
diff <(grep -oE '"[A-Z_]+"' "$root/src/exec/schema/secret_columns.h" | tr -d '"') \
    <(grep -oE '<!-- secret columns -->.*<!-- end -->' "$root/docs/field.md" | grep -oE '`[A-Z_]+`' | tr -d '`') ||
    { echo "docs/field.md names other secret columns (>)"; wrong=1; }
[ "$wrong" -eq 0 ]
