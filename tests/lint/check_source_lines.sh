#!/usr/bin/env bash
# A point without a fixed number is traced with its source line, and must not stand on a line that is a fixed point of the
# same function: people would read the one for the other. usage: check_source_lines.sh SOURCES
set -euo pipefail
cd "$1"

wrong=$(
    grep -rnH --include='*.cpp' __LINE__ src | while IFS=: read -r file line _; do
        awk -F '\t' -v line="$line" '$2 == line { print $1 }' docs/trace-points.tsv | while read -r function; do
            if [ "$(grep -cw -- "$function" "$file")" -ne 0 ]; then
                echo "$file:$line: is a fixed point of $function; move the line"
            fi
        done
    done
)
if [ -n "$wrong" ]; then
    printf '%s\n' "$wrong" >&2
    exit 1
fi
