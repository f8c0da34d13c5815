#!/usr/bin/env bash
# No script under the folder $1 pipes into a reader that leaves before its input ends: the writer would die of SIGPIPE,
# or not, as it happens to be scheduled, and under pipefail the whole pipeline with it.
set -euo pipefail
cd "$1"

leaves_early='(^|[^|])[|]&? *(head\b|e?grep +(-[a-zA-Z]+ +)*-[a-zA-Z]*[qm]|sed [^|]*[0-9$/;]q\b|awk [^|]*\bexit\b)'
count=0
wrong=0
while IFS= read -r script; do
    count=$((count + 1))
    # A pipeline may go on in the next line.
    joined=$(sed -E -e ':more' -e '/(\||\\)$/ { N; s/\\?\n */ /; b more' -e '}' "$script")
    if grep -nE "$leaves_early" <<<"$joined" >&2; then
        echo "$script: the reader of the pipeline above may leave before the writer has written" >&2
        wrong=1
    fi
done < <(grep -rlE --exclude-dir=build --exclude-dir=.git '^#!.*\b(ba)?sh$' . | sort)

[ "$count" -gt 20 ] || { echo "only $count scripts found" >&2; exit 1; }
[ "$wrong" -eq 0 ] || exit 1
echo "$count scripts"
