#!/usr/bin/env bash
# Measures which lines and branches of src/ the tests run. Prints two tables and leaves a page for each source in
# build/coverage/report. Works from any folder; installs what is missing.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install_packages.sh
cmake --preset coverage >/dev/null
cmake --build --preset coverage
find build/coverage -name '*.gcda' -delete
# Whole programs: a process for each unit test would write the counters a thousand times, as the analysis of a fleet of
# devices does.
ctest --preset coverage -R '^(other_schema_points|trace_points|fault_sweep|oracle|query\..*)$' -E query.analysis

# Out of the count: the branches that the compiler adds for exceptions, and those without code behind them.
report=build/coverage/report
rm -rf "$report"
mkdir -p "$report"
gcovr --root . --filter src/ --exclude-throw-branches --exclude-unreachable-branches \
    --json "$report/counters.json" build/coverage
combine=(gcovr --root . --add-tracefile "$report/counters.json")
"${combine[@]}" --html-details "$report/index.html" --html-title "qrylib coverage"
"${combine[@]}" --txt "$report/lines.txt"
"${combine[@]}" --txt "$report/branches.txt" --branches
cat "$report/lines.txt" "$report/branches.txt"
