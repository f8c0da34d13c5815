#!/usr/bin/env bash
# Fuzzes for a long time: fuzz.sh MINUTES [TARGET...]. Two targets run at a time, all of them unless some are
# named. Then takes the best of what was found into fuzz/corpus.
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

# The tree keeps what was written by hand, which has names, and of what was found the most telling few: from the
# smallest set that reaches every line the longest inputs, which reach the most at once.
keep() {
    local name=$1 chosen
    chosen=$(mktemp -d)
    find "fuzz/corpus/$name" -type f -regextype posix-extended -regex '.*/[0-9a-f]{40}' -delete
    "$folder/fuzz_$name" -set_cover_merge=1 -use_counters=0 -max_len=1024 "$chosen" "$folder/found/$name" \
        >"$logs/$name.merge.log" 2>&1
    find "$chosen" -type f -printf '%s %p\n' | sort -rn | awk 'NR <= 20 { print $2 }' |
        xargs -r cp -t "fuzz/corpus/$name"
    rm -r "$chosen"
}
for name in "$@"; do
    grep -h 'number_of_executed_units' "$logs/$name.log" | sed "s/^stat::/$name: /" || true
    keep "$name"
done
