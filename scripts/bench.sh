#!/usr/bin/env bash
# Measures the library beside SQLite and writes docs/benchmarks.md with its plots. Works from any folder; installs
# what is missing, LMDB among it, which nothing else needs. Takes some ten minutes; use a quiet machine.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install_packages.sh
scripts/install_packages.sh --build liblmdb-dev
cmake --preset release -DQRYLIB_BUILD_BENCH=ON >/dev/null
cmake --build --preset release

results=build/release/bench/results
mkdir -p "$results"
rm -f "$results"/*.json "$results"/*.jsonl

# One program with its options; its results go to a file of its name.
measure() {
    build/release/bench/"$@" --benchmark_enable_random_interleaving=true --benchmark_out_format=json \
        --benchmark_out="$results/$1.json" >/dev/null
}

measure qrylib_bench --benchmark_repetitions=9 --benchmark_min_time=0.05
for records in 10 101 1000 10000 60000; do
    measure "qrylib_bench_$records" --by_size --benchmark_repetitions=5 --benchmark_min_time=0.05
done
# Several processes: what the engines measured comes in turns, so that what disturbs one disturbs all.
for _ in 1 2 3; do
    for mix in "1 0" "0 1" "1 1" "4 0" "4 2"; do
        read -r readers writers <<<"$mix"
        for engine in qrylib sqlite_fresh sqlite_kept; do
            build/release/bench/qrylib_processes $engine "$readers" "$writers" 2
        done
        build/release/bench/lmdb_processes lmdb "$readers" "$writers" 2
    done
done >"$results/processes.jsonl"
python3 bench/report.py "$results" docs
