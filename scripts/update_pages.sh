#!/usr/bin/env bash
# Writes what of the pages is generated: the data dictionary and the pictures, from the schema as the preset dev compiles
# it. With "--check SCHEMA" compares the pages with what print_schema printed there, and changes nothing. Works from any
# folder.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
if [ "${1:-}" = --check ]; then
    schema=$2
else
    schema=$scratch/schema
    cmake --preset dev >/dev/null
    cmake --build --preset dev --target print_schema
    build/dev/tests/print_schema >"$schema"
fi

python3 -B scripts/pages/generate.py "$schema" "$scratch/docs"
if [ "${1:-}" != --check ]; then
    rm -f docs/pictures/*.svg
    cp -r "$scratch"/docs/. docs
elif ! { diff -u docs/dictionary.md "$scratch/docs/dictionary.md" && diff -ru --exclude='*.png' docs/pictures "$scratch/docs/pictures"; }; then
    echo "the dictionary and the pictures are not what is generated; scripts/update_pages.sh writes them anew" >&2
    exit 1
fi
