#!/usr/bin/env bash
# Runs the queries for DuckDB that docs/analysis.md shows, on what its commands exported.
#
# usage: run.sh NODE SOURCES FOLDER
set -euo pipefail
modules=$2/build/npm/analysis
cd "$3"
[ -d "$modules/node_modules/@duckdb/node-api" ] || { echo "tests/analysis/install.sh was not run"; exit 77; }
exec "$1" "$2/tests/analysis/duckdb.mjs" "$modules/" "$2/docs/analysis.md"
