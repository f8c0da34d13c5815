#!/usr/bin/env bash
# Asks the device build and the workstation build the same and compares byte for byte: answers, codes and traces
# of every query text, the records it leaves, and the data-version file. Each build also loads what the other saved.
#
# usage: same_answers.sh WORKSTATION_BUILD DEVICE_BUILD EMULATOR...
set -euo pipefail
workstation=$1
device=$2
emulator=("${@:3}")
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
queries=$here/../query

for program in tools/qrysh/qrysh tests/version_file; do
    if [ ! -x "$workstation/$program" ]; then
        echo "skipped: $program of the workstation build is missing (cmake --build --preset dev)"
        exit 77
    fi
done

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
mkdir "$scratch/workstation" "$scratch/device"
differences=0

# on BUILD PROGRAM ARGUMENT...: runs a program of one build in that build's own folder.
on() {
    local build=$1 program=$2
    shift 2
    cd "$scratch/$build"
    if [ "$build" = device ]; then
        "${emulator[@]}" "$device/$program" "$@"
    else
        "$workstation/$program" "$@"
    fi
}

# same WHAT FILE: the file is there in both folders, and equal.
same() {
    if ! cmp "$scratch/workstation/$2" "$scratch/device/$2"; then
        echo "$1 differs: $2"
        diff -u "$scratch/workstation/$2" "$scratch/device/$2" | sed -n '1,20p' || true
        differences=$((differences + 1))
    fi
}

texts=0
for text in "$queries"/*.sql; do
    name=$(basename "$text" .sql)
    fixture=$queries/$name.json
    [ -e "$fixture" ] || fixture=$here/../../examples/office.json
    for build in workstation device; do
        # A text that leaves the shell would never come to the saving, which stands apart from a statement that the
        # text does not end.
        sed '/^\.quit/,$d' "$text" >"$scratch/script"
        answers=$scratch/$build/$name.answers
        (on "$build" tools/qrysh/qrysh --echo --trace --fixture "$fixture" -f "$scratch/script" \
            ".save $name.json") >"$answers" 2>&1 || echo "exit status $?" >>"$answers"
    done
    same "what is printed" "$name.answers"
    same "the records left" "$name.json"
    texts=$((texts + 1))
done

# Each build loads what the other saved, and saves it again unchanged.
(on workstation tools/qrysh/qrysh --fixture ../device/writes.json ".save again.json")
(on device tools/qrysh/qrysh --fixture ../workstation/writes.json ".save again.json")
same "a fixture of the other build" again.json
cmp "$scratch/device/writes.json" "$scratch/device/again.json" || differences=$((differences + 1))

# Each build accepts the version that the other wrote, and no other version.
for build in workstation device; do
    (QRYLIB_FILES=$scratch/files-$build on "$build" tests/version_file write 0x01020384 >/dev/null)
done
diff -r "$scratch/files-workstation" "$scratch/files-device" || differences=$((differences + 1))
for version in 0x01020384 0x84030201; do
    (QRYLIB_FILES=$scratch/files-device on workstation tests/version_file check $version >>"$scratch/workstation/version" || true)
    (QRYLIB_FILES=$scratch/files-workstation on device tests/version_file check $version >>"$scratch/device/version" || true)
done
same "a version check" version
grep -q '^check 0x01020384: 0x0000$' "$scratch/device/version" || differences=$((differences + 1))
grep -q '^check 0x84030201: 0x0000$' "$scratch/device/version" && differences=$((differences + 1))

echo "$texts query texts, $differences differences between the two builds"
[ "$texts" -gt 0 ] && [ "$differences" -eq 0 ]
