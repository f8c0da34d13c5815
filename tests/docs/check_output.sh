#!/usr/bin/env bash
# A page shows what a command prints, shortened: the block that begins with "$ NAME". Its parts, between lines of
# "...", must stand in the output in this order and as they are.
#
# usage: check_output.sh PAGE NAME COMMAND... (what NAME runs, with its output on both streams)
set -euo pipefail
page=$1
name=$2
command=("${@:3}")

printed=$("${command[@]}" 2>&1) || true
block=$(awk -v open="\$ $name" '/^```/ { inside = 0 } inside { print } $0 == open { inside = 1 }' "$page")
[ -n "$block" ] || { echo "$page: no output of $name is shown" >&2; exit 1; }

rest=$'\n'$printed$'\n'
part=
while IFS= read -r line; do
    if [ "$line" != ... ]; then
        part+=$line$'\n'
        continue
    fi
    [[ $rest == *$'\n'"$part"* ]] || break
    rest=$'\n'${rest#*$'\n'"$part"}
    part=
done <<<"$block"$'\n...'
if [ -n "$part" ]; then
    printf '%s: %s does not print, at this place:\n%s' "$page" "$name" "$part" >&2
    exit 1
fi
