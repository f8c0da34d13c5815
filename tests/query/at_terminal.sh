#!/usr/bin/env bash
# A terminal for the shell, played by tmux: to be sourced by the scripts that type at it and compare what it shows.
# They set `qrysh`, the shell's full path as an array, before, and may set
# `columns`, `device` and `prompt`, what the shell is waited for with.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
columns=100
prompt='^qrysh>'
device=(--fixture "$root/examples/office.json")

scratch=$(mktemp -d)
export LC_ALL=C.UTF-8 TERM=screen HOME=$scratch EDITRC=/dev/null PAGER= QRYSH_HISTORY=$scratch/history
run=0
terminal() { tmux -u -f /dev/null -S "$scratch/socket$run" "$@"; }
trap 'terminal kill-server 2>/dev/null || true; rm -rf "$scratch"' EXIT

# Long lines show as they are printed: what the margin breaks is joined again.
screen() { terminal capture-pane -p -J -t shell; }

# Waits until the screen holds a line that matches; shows the screen and gives up after ten seconds.
expect() {
    for _ in $(seq 200); do
        if grep -qE -- "$1" <<<"$(screen)"; then
            return
        fi
        sleep 0.05
    done
    printf 'the screen does not show: %s\n' "$1"
    screen
    exit 1
}

start() {
    terminal kill-server 2>/dev/null || true
    run=$((run + 1)) # a server of its own: the one before may still be leaving
    terminal new-session -d -s shell -x "$columns" -y 24 \
        "$(printf '%q ' env "$@" "${qrysh[@]}" "${device[@]}"); echo \"left with \$?\"; read -r"
    expect "$prompt"
}
keys() { terminal send-keys -t shell "$@"; }
# A semicolon at the end is tmux's own, unless it is marked.
type_line() { terminal send-keys -t shell -l "${1/%;/\\;}" && keys Enter; }
