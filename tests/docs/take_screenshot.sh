#!/usr/bin/env bash
# Takes pictures of the reference's start page, light, dark and narrow, and leaves them in a folder for people to look at. An
# empty page, or one that looks the same to all, is a failure.
#
# usage: take_screenshot.sh PAGE FOLDER
set -euo pipefail
page=$1
folder=$2
browser=$(command -v chromium) || { echo "there is no chromium"; exit 77; }

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
# take NAME SIZE OPTION...
take() {
    "$browser" --headless --no-sandbox --disable-gpu --hide-scrollbars --user-data-dir="$scratch/user" \
        --window-size="$2" "${@:3}" --screenshot="$folder/$1" "file://$page" >"$scratch/said" 2>&1 ||
        { cat "$scratch/said" >&2; return 1; }
    [ "$(stat -c %s "$folder/$1")" -gt 20000 ] || { echo "$folder/$1 shows next to nothing" >&2; return 1; }
}
rm -f "$folder"/start-page*.png
take start-page.png 1100,1800
take start-page-dark.png 1100,1800 --blink-settings=preferredColorScheme=0
take start-page-narrow.png 420,2400
if cmp -s "$folder/start-page.png" "$folder/start-page-dark.png"; then
    echo "the start page has no colours for readers in the dark" >&2
    exit 1
fi
