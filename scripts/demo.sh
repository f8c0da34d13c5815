#!/usr/bin/env bash
# Shows the library at work on the sample device: builds what is missing, then runs examples/demo.sql in the
# shell. Works from any folder; installs what is missing; leaves nothing behind but build/.
#
# usage: demo.sh [--with COMMAND...] (a shell that is built already, behind an emulator where it needs one)
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

log=$(mktemp)
trap 'rm -f "$log"' EXIT
quietly() {
    "$@" >"$log" 2>&1 || { cat "$log" >&2; exit 1; }
}

# Reads what the build says into the log, and tells how far it is and how long that took since the start: on one line of
# a terminal, elsewhere ten times.
tell_progress() {
    local line tenth=0
    while IFS= read -r line; do
        printf '%s\n' "$line" >>"$log"
        [[ $line =~ ^\[([0-9]+)/([0-9]+)\] ]] || continue
        local step=${BASH_REMATCH[1]} steps=${BASH_REMATCH[2]}
        if [ -t 1 ]; then
            printf '\rbuilding the shell: step %d of %d, %d s ' "$step" "$steps" "$SECONDS"
        elif [ $((10 * step / steps)) -gt "$tenth" ]; then
            tenth=$((10 * step / steps))
            echo "building the shell: step $step of $steps, $SECONDS s"
        fi
    done
}

qrysh=(build/release/tools/qrysh/qrysh)
if [ "${1:-}" = --with ]; then
    qrysh=("${@:2}")
else
    scripts/install_packages.sh --build
    quietly cmake --preset release
    : >"$log"
    cmake --build --preset release --target qrysh 2>&1 | tell_progress || { cat "$log" >&2; exit 1; }
    printf '%sthe first answer comes %d s after the start\n' "$([ ! -t 1 ] || printf '\r\033[K')" "$SECONDS"
fi

# The sample script ends with statements that are refused, so the shell's exit status is 1. Any other is a fault.
status=0
"${qrysh[@]}" --echo --fixture examples/office.json <examples/demo.sql 2>&1 || status=$?
[ "$status" -eq 1 ]
