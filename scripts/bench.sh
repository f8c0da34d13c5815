#!/usr/bin/env bash
# Measures the library beside SQLite and writes docs/benchmarks.md with its plots. Works from any folder; installs
# what is missing. Takes some minutes; use a quiet machine.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install_packages.sh
cmake --preset release -DQRYLIB_BUILD_BENCH=ON >/dev/null
cmake --build --preset release

results=build/release/bench/results
mkdir -p "$results"
rm -f "$results"/*.json

# One program with its options; its results go to a file of its name.
measure() {
    build/release/bench/"$@" --benchmark_enable_random_interleaving=true --benchmark_out_format=json \
        --benchmark_out="$results/$1.json" >/dev/null
}

measure qrylib_bench --benchmark_repetitions=9 --benchmark_min_time=0.05
for records in 10 101 1000 10000 60000; do
    measure "qrylib_bench_$records" --by_size --benchmark_repetitions=5 --benchmark_min_time=0.05
done
python3 bench/report.py "$results" docs
