#!/usr/bin/env bash
# Shows the library at work on the sample device: builds what is missing, then runs examples/demo.sql in the
# shell. Works from any folder; installs what is missing; leaves nothing behind but build/.
#
# usage: demo.sh [--with COMMAND...] (a shell that is built already, behind an emulator where it needs one)
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

quietly() {
    local log
    log=$(mktemp)
    if ! "$@" >"$log" 2>&1; then
        cat "$log" >&2
        rm -f "$log"
        exit 1
    fi
    rm -f "$log"
}

qrysh=(build/release/tools/qrysh/qrysh)
if [ "${1:-}" = --with ]; then
    qrysh=("${@:2}")
else
    scripts/install_packages.sh --build
    echo "building the shell"
    quietly cmake --preset release
    quietly cmake --build --preset release --target qrysh
fi

# The sample script ends with statements that are refused, so the shell's exit status is 1. Any other is a fault.
status=0
"${qrysh[@]}" --echo --fixture examples/office.json <examples/demo.sql 2>&1 || status=$?
[ "$status" -eq 1 ]
