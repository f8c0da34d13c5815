#!/usr/bin/env bash
# Fuzzes for a long time: fuzz.sh MINUTES [TARGET...]. Two targets run at a time, all of them unless some are
# named. Then minimises what was found into fuzz/corpus.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

[ $# -ge 1 ] || { echo "usage: scripts/fuzz.sh MINUTES [TARGET...]" >&2; exit 2; }
seconds=$(($1 * 60))
shift
scripts/install_packages.sh
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz
folder=build/fuzz/fuzz
[ $# -gt 0 ] || set -- sql_text statement_records phrases fixture image element_bytes

logs=$folder/logs
mkdir -p "$logs"
printf '%s\n' "$@" | xargs -P 2 -I{} sh -c \
    'fuzz/run.sh "$1/fuzz_$2" "$2" "$3" >"$4/$2.log" 2>&1 || echo "$2 failed: see $4/$2.log" >&2' \
    sh "$folder" {} "$seconds" "$logs"

for name in "$@"; do
    grep -h 'number_of_executed_units' "$logs/$name.log" | sed "s/^stat::/$name: /" || true
    minimised=$(mktemp -d)
    "$folder/fuzz_$name" -merge=1 -max_len=4096 "$minimised" "fuzz/corpus/$name" "$folder/found/$name" >/dev/null 2>&1
    # The tree keeps the smallest ones; the rest stays beside the program.
    rm -f "fuzz/corpus/$name"/*
    find "$minimised" -type f -printf '%s %f\n' | sort -n | head -n 36 | while read -r _ file; do
        cp "$minimised/$file" "fuzz/corpus/$name/"
    done
    rm -rf "$minimised"
done
