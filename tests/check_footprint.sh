#!/usr/bin/env bash
# Prints the size of the library as it goes onto the device and its largest stack frames, and fails where one is
# above what a device can spare: flash for the text, and threads with small stacks.
#
# usage: check_footprint.sh LIBRARY OBJECT_FOLDER STRIP
set -euo pipefail
library=$1
objects=$2
strip=$3
text_limit=150000
frame_limit=7000

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
"$strip" -o "$scratch/library" "$library"
read -r text data bss < <(size "$scratch/library" | awk 'NR == 2 { print $1, $2, $3 }')
cat <<END
| text | data | bss | stripped file |
|---|---|---|---|
| $text | $data | $bss | $(stat -c %s "$scratch/library") |

END

# A line of these files: file:line:column:function, bytes, kind; what a call adds at run time is not "static".
# With link-time optimisation the frames are those of the link.
frames='*.su'
[ -z "$(find "$objects" -name '*.ltrans.su')" ] || frames='*.ltrans.su'
find "$objects" -name "$frames" -exec cat {} + | sort -t$'\t' -k2,2nr >"$scratch/frames"
largest=$(head -1 "$scratch/frames" | cut -f2)
echo "| bytes of stack | function |"
echo "|---|---|"
head -5 "$scratch/frames" | awk -F '\t' '{
    name = $1
    sub(/^[^:]*:[^:]*:[^:]*:/, "", name)
    sub(/[(.].*/, "", name)
    sub(/.* /, "", name)
    print "| " $2 " | `" name "` |"
}'

status=0
if [ "$text" -gt $text_limit ]; then
    echo "text: $text bytes, above $text_limit" >&2
    status=1
fi
if [ -z "$largest" ] || [ "$largest" -gt $frame_limit ]; then
    echo "largest stack frame: ${largest:-unknown}, limit $frame_limit" >&2
    status=1
fi
if grep -vE '(static|dynamic,bounded)$' "$scratch/frames" >&2; then
    echo "the frames above have no bound" >&2
    status=1
fi
exit $status
