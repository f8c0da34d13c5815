#!/usr/bin/env bash
# The data dictionary and the pictures are what the schema and the records of this build make of them, and every picture is
# shown on a page, with words in its place for who does not see it.
#
# usage: check_generated.sh ROOT PRINT_SCHEMA...
set -euo pipefail
cd "$1"

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
"${@:2}" >"$scratch/schema"
scripts/update_pages.sh --check "$scratch/schema"

count=0
for picture in docs/pictures/*.svg; do
    count=$((count + 1))
    grep -qE "!\[[^]]{20,}\]\(pictures/$(basename "$picture")\)" docs/*.md ||
        { echo "$picture is on no page, or has no words in its place" >&2; exit 1; }
    grep -q 'prefers-color-scheme:dark' "$picture" || { echo "$picture has no colours for dark pages" >&2; exit 1; }
done
echo "$count pictures"
