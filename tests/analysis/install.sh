#!/usr/bin/env bash
# Installs the DuckDB that runs the queries of docs/analysis.md, as package-lock.json names it, into build/npm/analysis. Quick
# where it is there. Not with "npm ci", which wants the bindings of every platform in the lock file.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
folder=../../build/npm/analysis

if [ -d "$folder/node_modules" ] && cmp -s package-lock.json "$folder/package-lock.json"; then
    exit 0
fi
rm -rf "$folder"
mkdir -p "$folder"
cp .npmrc package.json package-lock.json "$folder"
cd "$folder"
npm install --no-save --silent
