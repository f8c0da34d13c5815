#!/usr/bin/env bash
# Four times the text takes at most six times the instructions to analyse: cost.sh PROGRAM, which takes a text of a
# kind and a number of items. What a text costs depends on nothing but the text.
set -euo pipefail
program=$1
factor=6
if ! valgrind=$(command -v valgrind); then
    echo "skipped: there is no valgrind to count instructions with"
    exit 77
fi
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

declare -A counted=([analyse]='norvane::qry_lib_sql_parser::analyze_sql_select*' [run]=qry_lib_db_exec_query)

# The instructions within the functions that take the text.
instructions() {
    env -i "$valgrind" --tool=callgrind --callgrind-out-file=/dev/null --log-file="$folder/log" \
        --toggle-collect="${counted[$1]}" "$program" "$@" >"$folder/bytes"
    awk '/Collected *:/ { print $NF }' "$folder/log"
}

failed=0
while read -r way kind num; do
    small=$(instructions "$way" "$kind" "$num")
    large=$(instructions "$way" "$kind" $((4 * num)))
    echo "$way $kind: $(cat "$folder/bytes") bytes, $large instructions, $((100 * large / small)) percent of a quarter"
    if [ "$small" -eq 0 ] || [ "$large" -gt $((factor * small)) ]; then
        echo "more than $factor times $small" >&2
        failed=1
    fi
done <<'END_OF_TEXTS'
analyse tables 490
analyse tables 1960
analyse conditions 180
analyse conditions 730
analyse keys 590
analyse keys 2350
analyse listed 1000
analyse listed 4000
run tables 1960
run conditions 730
run keys 2350
END_OF_TEXTS
exit $failed
