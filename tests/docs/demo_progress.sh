#!/usr/bin/env bash
# The demo tells how far its build is and when the first answer comes, and shows what a build says that fails. A program
# in the builder's place says what a build would.
#
# usage: demo_progress.sh ROOT COMMAND... (the shell's full path, behind an emulator where it needs one)
set -euo pipefail
root=$1
qrysh=("${@:2}")

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
mkdir -p "$scratch/scripts" "$scratch/bin" "$scratch/build/release/tools/qrysh"
cp "$root/scripts/demo.sh" "$scratch/scripts"
cp -r "$root/examples" "$scratch"
printf '#!/bin/sh\n' >"$scratch/scripts/install_packages.sh"
printf '#!/bin/sh\nexec %s "$@"\n' "$(printf '%q ' "${qrysh[@]}")" >"$scratch/build/release/tools/qrysh/qrysh"
cat >"$scratch/bin/cmake" <<'END'
#!/bin/sh
[ "$1" = --build ] || exit 0
for step in $(seq 1 25); do
    echo "[$step/25] Building"
done
[ -z "$FAILS" ] || { echo "there is a fault" >&2; exit 1; }
END
chmod +x "$scratch"/scripts/*.sh "$scratch/bin/cmake" "$scratch/build/release/tools/qrysh/qrysh"
export PATH=$scratch/bin:$PATH

fail() {
    echo "$1" >&2
    cat "$scratch/printed" >&2
    exit 1
}

FAILS='' "$scratch/scripts/demo.sh" >"$scratch/printed" 2>&1 || fail "the demo failed"
[ "$(grep -cE '^building the shell: step [0-9]+ of 25, [0-9]+ s$' "$scratch/printed")" -eq 10 ] ||
    fail "progress is not told ten times"
grep -qE '^building the shell: step 25 of 25, [0-9]+ s$' "$scratch/printed" || fail "the last step is not told"
[ "$(grep -A1 -E '^the first answer comes [0-9]+ s after the start$' "$scratch/printed" | tail -n 1)" = \
    'qrysh> -- People, by the reading of their names.' ] || fail "no time of the first answer stands before it"

status=0
FAILS=1 "$scratch/scripts/demo.sh" >"$scratch/printed" 2>&1 || status=$?
[ "$status" -eq 1 ] || fail "a build that fails goes on"
grep -q '^there is a fault$' "$scratch/printed" || fail "what a failing build says is not shown"
