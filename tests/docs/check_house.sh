#!/usr/bin/env bash
# The README's house shows every folder at the top and under src and tools, and no other; docs/architecture.md names those
# under src and tools too, and the shell's rooms; docs/testing.md those of the tests.
#
# usage: check_house.sh ROOT
set -euo pipefail
cd "$1"
wrong=0

# The folders right below a folder that hold something, but for what a build leaves there.
folders() {
    find "$1" -mindepth 1 -maxdepth 1 -type d -not -name '.*' -not -name build -not -name out -not -name __pycache__ \
        -not -empty | sed 's,^\./,,' | sort
}

# named FOLDER PAGE: the page names the folder, whole.
named() {
    grep -qE "(^|[^A-Za-z0-9_/.-])$1/?([^A-Za-z0-9_/-]|\$)" "$2"
}

house=$(mktemp)
trap 'rm -f "$house"' EXIT
awk '/^## / { inside = $0 == "## The house" } inside && /^```/ { drawn = !drawn; next } inside && drawn' README.md >"$house"
[ -s "$house" ] || { echo "README.md shows no house" >&2; exit 1; }

# wants PAGE SHOWN-AS FOLDER...: the page, or its part, names each.
wants() {
    local folder
    for folder in "${@:3}"; do
        named "$folder" "$1" || { echo "$2 does not name the folder $folder" >&2; wrong=1; }
    done
}
mapfile -t top < <(folders .)
mapfile -t parts < <(folders src; folders tools)
mapfile -t rooms < <(folders tools/qrysh)
mapfile -t tests < <(folders tests)
for folder in "${top[@]}"; do
    case $folder in
    include | src | tools) ;; # shown by what is in them
    *) wants "$house" "the README's house" "$folder" ;;
    esac
done
wants "$house" "the README's house" include/qrylib "${parts[@]}"
wants docs/architecture.md docs/architecture.md "${parts[@]}" "${rooms[@]}"
wants docs/testing.md docs/testing.md "${tests[@]}"

# A folder in the drawing ends with a slash; one that stands under another shows its last part alone.
while IFS= read -r folder; do
    [ -n "$(find . -path "./build" -prune -o -type d -path "*/$folder" -print)" ] ||
        { echo "the README's house shows $folder/, which is not there" >&2; wrong=1; }
done < <(grep -oE '[a-z_]+(/[a-z_]+)*/( |$)' "$house" | sed 's,/ *$,,')

[ "$wrong" -eq 0 ] || exit 1
echo "${#top[@]} folders at the top, ${#parts[@]} parts, ${#tests[@]} folders of tests"
