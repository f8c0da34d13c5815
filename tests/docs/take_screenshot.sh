#!/usr/bin/env bash
# Takes pictures of the reference's start page, light, dark and narrow, and leaves them in a folder for people to look at. An
# empty page, or one that is not dark where its reader wants it so, is a failure.
#
# usage: take_screenshot.sh PAGE FOLDER PYTHON
set -euo pipefail
page=$1
folder=$2
python=$3
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

# The first pixel is the page's paper: in a PNG its bytes stand behind the first one, whatever the filter.
paper() {
    "$python" -B -c '
import struct, sys, zlib
data, at, packed = open(sys.argv[1], "rb").read(), 8, b""
while at < len(data):
    length, kind = struct.unpack(">I4s", data[at:at + 8])
    packed += data[at + 8:at + 8 + length] if kind == b"IDAT" else b""
    at += 12 + length
print("light" if sum(zlib.decompress(packed)[1:4]) > 600 else "dark")' "$folder/$1"
}
[ "$(paper start-page.png) $(paper start-page-dark.png) $(paper start-page-narrow.png)" = "light dark light" ] ||
    { echo "the start page has not the colours of its readers" >&2; exit 1; }
