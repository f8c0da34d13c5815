#!/usr/bin/env bash
# Every relative link in the Markdown pages under the folder $1 leads to a file or folder, and every fragment to
# a heading of the page that it names. Files of the project and functions that they name between backquotes exist.
# shellcheck disable=SC2016
set -euo pipefail
cd "$1"

# The fragments of a page: its headings in lower case, blanks as hyphens, other punctuation dropped.
fragments() {
    awk '/^```/ { inside = !inside } !inside && /^#+ / { sub(/^#+ /, ""); print }' "$1" |
        tr '[:upper:]' '[:lower:]' | sed 's/[^a-z0-9 _-]//g; s/ /-/g'
}

count=0
wrong=0
while IFS= read -r page; do
    while IFS= read -r target; do
        count=$((count + 1))
        file=${target%%#*}
        path=$(dirname "$page")/$file
        [ -n "$file" ] || path=$page
        if [ ! -e "$path" ]; then
            echo "$page: ($target) leads nowhere" >&2
            wrong=1
        elif [[ $target == *#* && $path == *.md ]] && ! grep -qxF "${target#*#}" <<<"$(fragments "$path")"; then
            echo "$page: ($target): there is no such heading" >&2
            wrong=1
        fi
    done < <(awk '/^```/ { inside = !inside } !inside' "$page" | sed 's/`[^`]*`//g' |
        grep -oE '\]\([^)]+\)' | sed 's/^](//; s/)$//' | grep -vE '^(https?|mailto):' || true)
done < <(find . -name '*.md' -not -path './build/*' -not -path './.git/*' | sort)

# Names in capitals, "*" and "<" stand for many files. A function is written with its brackets.
spans() {
    find . -name '*.md' -not -path './build/*' -not -path './.git/*' -print0 |
        xargs -0 awk '/^```/ { inside = !inside } !inside' | grep -oE '`[^`]+`' | tr -d '`' | sort -u
}
while IFS= read -r file; do
    [ -e "$file" ] || { echo "there is no file $file" >&2; wrong=1; }
done < <(spans | grep -E '^(src|include|platform|tools|tests|docs|examples|scripts|cmake|fuzz|bench)/[^ ]*$' |
    grep -vE 'NAME|[*<]' || true)
while IFS= read -r function; do
    grep -rqwE "$function" src include platform tests tools || { echo "there is no function $function" >&2; wrong=1; }
done < <(spans | grep -E '^[a-z_0-9:]+\(\)$' | sed 's/()$//; s/.*:://' || true)

[ "$count" -gt 0 ] || { echo "no links found" >&2; exit 1; }
[ "$wrong" -eq 0 ] || exit 1
echo "$count links"
