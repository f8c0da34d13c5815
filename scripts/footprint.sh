#!/usr/bin/env bash
# Measures what the library takes on the device and prints docs/footprint.md: scripts/footprint.sh >docs/footprint.md
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

for preset in firmware device; do
    cmake --preset "$preset" >/dev/null
done
cmake --build --preset firmware >/dev/null
cmake --build --preset device --target pool_peaks qrylib-record qrylib-snapshot >/dev/null

cat <<'END'
# Footprint

What the library takes on the device, in bytes: 32-bit PowerPC, built with the preset `firmware` (g++ 12, `-Os`, the
sources that statements spend their time in `-O2`, optimised once more when linking). `scripts/footprint.sh` measures it
and prints this page.

## Size and stack

The aims, held by the test `footprint` of that preset: text under 150000 (code, constants and unwind tables), no
stack frame above 7000.

END
tests/check_footprint.sh build/firmware/src/libqrylib.so build/firmware powerpc-linux-gnu-strip
cat <<'END'

## The field kit

Bytes of the files, stripped, as the preset `device` builds them (`-O1`, with traps for undefined behaviour).

END
sizes=$(mktemp -d)
trap 'rm -rf "$sizes"' EXIT
echo '| program | bytes |'
echo '|---|--:|'
for program in build/device/tools/field/{libqrylib-record.so,qrylib-snapshot}; do
    name=$(basename "$program")
    powerpc-linux-gnu-strip -o "$sizes/$name" "$program"
    echo "| \`$name\` | $(stat -c %s "$sizes/$name") |"
done
cat <<'END'

## Memory partition

Blocks and bytes that one query has taken at its peak, over a full table of 101 departments; a linked SELECT joins it
with the two edit counters. A statement record's own blocks count, and everything is given back at the end. Each row
is a block of its own with 3164 bytes for every selected column, so select only the columns that are read.

END
qemu-ppc -L /usr/powerpc-linux-gnu build/device/tests/pool_peaks

cat <<'END'

## Instructions

Instructions of one call over a full table of 101 departments, inside the library and inside the standard libraries of C
and C++, which the platform's calls run in too. `scripts/instructions.sh` counts them under emulation, exactly, into
`bench/instructions.tsv`; the test `instructions` fails when the library's differ from it by more than 2 percent. The
milliseconds are a plain estimate of both together: one instruction a cycle at 400 MHz, no cache missed.

| statement | library | standard libraries | milliseconds |
|---|--:|--:|--:|
END
awk -F '\t' '!/^#/ && $1 != "statement" { printf "| %s | %d | %d | %.2f |\n", $1, $3, $4, ($3 + $4) / 400000 }' \
    bench/instructions.tsv
