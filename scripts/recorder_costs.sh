#!/usr/bin/env bash
# Measures what a point query by key costs beside the recorder, in the preset `package`, and prints the rows of the
# table in docs/field.md.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

cmake --preset package >/dev/null
cmake --build --preset package --target qrylib-record recorded_caller >/dev/null
build=$PWD/build/package
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# cost [VARIABLE=VALUE...]: microseconds of one query.
cost() { env "$@" "$build/tests/field/recorded_caller" point examples/office.json; }
preload=LD_PRELOAD=$build/tools/field/libqrylib-record.so
base=$(cost)
row() { awk -v base="$base" -v cost="$2" -v what="$1" 'BEGIN { printf "| %s | %.1f | %.2f |\n", what, cost, cost / base }'; }
row "not loaded" "$base"
row "loaded, off" "$(cost "$preload")"
row "recording, list calls counted" "$(cost "$preload" QRYLIB_RECORD="$scratch/a.rec,values=off")"
row "recording, with values" "$(cost "$preload" QRYLIB_RECORD="$scratch/b.rec")"
