#!/usr/bin/env bash
# Measures the library beside SQLite and writes docs/benchmarks.md with its plots. Works from any folder; installs
# what is missing. Takes some minutes; use a quiet machine.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install_packages.sh libbenchmark-dev libsqlite3-dev python3
cmake --preset release -DQRYLIB_BUILD_BENCH=ON >/dev/null
cmake --build --preset release

results=build/release/bench/results
mkdir -p "$results"
rm -f "$results"/*.json
for program in build/release/bench/qrylib_bench*; do
    [ -x "$program" ] || continue
    "$program" --benchmark_repetitions=9 --benchmark_enable_random_interleaving=true --benchmark_min_time=0.05 \
        --benchmark_out="$results/$(basename "$program").json" --benchmark_out_format=json "$@" >/dev/null
done
python3 bench/report.py "$results" docs
