#!/usr/bin/env bash
# Runs one fuzz target for some seconds, from the corpus in the tree: run.sh PROGRAM NAME SECONDS.
# What is found new stays beside the program, and so does an input that fails.
set -euo pipefail
program=$1 name=$2 seconds=$3
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
found=$(dirname "$program")/found/$name
mkdir -p "$found"

# Files in memory where there is such a folder: the fixtures are written and read for every input.
[ -d /dev/shm ] && export TMPDIR=/dev/shm
dictionary=()
[ -f "$here/dictionaries/$name.dict" ] && dictionary=(-dict="$here/dictionaries/$name.dict")
exec "$program" -max_total_time="$seconds" -timeout=20 -rss_limit_mb=2048 -max_len=4096 -print_final_stats=1 \
    -artifact_prefix="$found-" "${dictionary[@]}" "$found" "$here/corpus/$name"
