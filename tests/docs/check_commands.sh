#!/usr/bin/env bash
# The commands that the Markdown pages under the folder $1 show, in blocks of the language sh, behind "$ " and between
# backquotes: the scripts, files, presets, labels, programs, variables and options that they name exist. What
# docs/analysis.md shows is run instead, by tests/analysis/commands.sh.
# shellcheck disable=SC2016
set -euo pipefail
cd "$1"

wrong=0
missing() {
    echo "$command: there is no $1" >&2
    wrong=1
}

# sources PATTERN FOLDER...: whether a file below holds it.
sources() { grep -rqE --include=CMakeLists.txt --include='*.cmake' --include='*.cpp' --include='*.sh' -- "$@"; }

# What does not show by itself what it is: the value of an option.
check_option() {
    case $1 in
    --preset) grep -qF "\"name\": \"$2\"" CMakePresets.json || missing "preset $2" ;;
    -L) sources "LABELS \"?([a-z-]+;)*$2\b" tests fuzz bench || missing "label $2" ;;
    -C) sources "CONFIGURATIONS $2\b" tests || missing "configuration $2" ;;
    -R) sources "TEST(_F|_P)?\([A-Za-z]*$2|NAME [a-z._]*$2" tests || missing "test like $2" ;;
    esac
}

# A program of a build folder is a target of its name.
check_built() {
    local preset=${1#build/} target
    preset=${preset%%/*}
    [ "$preset" = mydevice ] || grep -qF "\"name\": \"$preset\"" CMakePresets.json || missing "preset $preset"
    target=$(basename "$1")
    [ "$1" = "build/$preset" ] || [[ $target == *[A-Z]* ]] ||
        sources "(add_executable\(|add_test_program\(|^) *$target\b" tests tools fuzz bench || missing "target $target"
}

check_word() {
    local value=${1#-D}
    case $1 in
    --gtest_filter=*)
        value=${value#*=}
        sources "TEST(_F|_P)?\(.*${value//[\'*]/}" tests || missing "test like $value"
        ;;
    -DCMAKE_*) ;;
    -D[A-Z]*=*) sources "${value%%=*}" CMakeLists.txt cmake tools || missing "variable $1" ;;
    QRYLIB_[A-Z_]*=*) sources "${1%%=*}" tests platform || missing "variable $1" ;;
    build/*/packages/*) ;; # named by their versions
    build/*) check_built "$1" ;;
    qrylib-*) sources "add_executable\($1\b" tools || missing "target $1" ;;
    scripts/* | tests/* | fuzz/* | docs/* | examples/*) [ -e "$1" ] || missing "$1" ;;
    esac
}

# The options of this project's own programs stand in their sources.
check_own_option() {
    local name=${2%%=*}
    case $1 in
    *qrysh) sources "\"$name\"" tools/qrysh || missing "option $name" ;;
    build/*) [[ $name == --gtest* ]] || sources "\"$name\"" tests || missing "option $name" ;;
    esac
}

check() {
    local words word before= program=
    read -r -a words <<<"${1%% #*}"
    for word in "${words[@]}"; do
        word=${word#./}
        word=${word//\"/}
        word=${word#\$PWD/}
        [ -n "$program" ] || [[ $word == *=* ]] || program=$word
        check_option "$before" "$word"
        check_word "$word"
        [[ $word != --* ]] || check_own_option "$program" "$word"
        before=$word
    done
    if [[ $program == scripts/* && ! -x $program ]]; then
        missing "program $program"
    fi
}

commands() {
    find . -name '*.md' -not -path './build/*' -not -path './.git/*' -not -name analysis.md -print0 | xargs -0 awk '
        /^ *```/ { inside = !inside; shell = inside && /^ *```sh$/; next }
        shell && sub(/\\$/, "") { begun = begun $0; next }
        shell && !/^ *(#|$)/ { print begun $0; begun = "" }
        inside && /^\$ / { print substr($0, 3) }
        !inside { print > "/dev/stderr" }' 2>"$prose"
    grep -ohE '`((scripts|tests|fuzz|build)/[^` ]*|cmake|ctest|cpack|doxygen|qrysh|man) [^`]*`' "$prose" | tr -d '`' || true
}
prose=$(mktemp)
trap 'rm -f "$prose"' EXIT
count=0
while IFS= read -r command; do
    count=$((count + 1))
    check "$command"
done < <(commands)

[ "$count" -gt 20 ] || { echo "only $count commands found" >&2; exit 1; }
[ "$wrong" -eq 0 ] || exit 1
echo "$count commands"
