#!/usr/bin/env bash
# The man page lints clean, and names every command and every option that the shell has, and no others.
#
# usage: man_page.sh MANDOC COMMAND... (the shell's full path, behind an emulator where it needs one)
set -euo pipefail
mandoc=$1
qrysh=("${@:2}")
page=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)/docs/qrysh.1

"$mandoc" -Tlint -W warning "$page"
differences=$(diff \
    <(
        "${qrysh[@]}" .help | grep -oE '^\.[a-z]+' | sort -u
        "${qrysh[@]}" --help | grep -oE '^  -[-,a-z]+' | sed 's/.*-h,//; s/^  //' | sort -u
    ) \
    <(
        grep -oE '^\.It Ic \.[a-z]+' "$page" | sed 's/.* //' | sort -u
        grep -oE '^\.It Fl -?[-a-z]+' "$page" | sed 's/.*Fl /-/' | sort -u
    )) || true
if [ -n "$differences" ]; then
    printf 'the shell (<) and its man page (>) differ:\n%s\n' "$differences" >&2
    exit 1
fi
