#!/usr/bin/env bash
# Static analysis: run.sh SOURCES BUILD [full]. Without "full" clang-tidy leaves out the analysis of paths, which takes
# as long as all the rest. clang-tidy looks at each file that changed since it was last found clean,
# or all when a header or its settings changed; cppcheck keeps its own record of what it has seen.
set -euo pipefail
sources=$1
build=$2
checks=-clang-analyzer-*
[ "${3:-}" != full ] || checks=
seen=$build/lint
mkdir -p "$seen/cppcheck"
cd "$sources"

common=$({ echo "$checks"; cat .clang-tidy; clang-tidy --version; find include src platform tools -name '*.h' | sort | xargs cat; } | sha256sum)

# Prints "STAMP FILE" for what is to be looked at: the stamp names the state in which a file was found clean.
pending() {
    find src platform tools -name '*.cpp' | sort | while read -r file; do
        grep -qF "\"file\": \"$sources/$file\"" "$build/compile_commands.json" || continue
        stamp=$seen/$(printf '%s %s' "$common" "$(sha256sum "$file")" | sha256sum | cut -c1-32)
        [ -e "$stamp" ] || printf '%s %s\n' "$stamp" "$file"
    done
}

export build checks
pending | xargs -r -P 2 -L 1 bash -c \
    'clang-tidy --quiet -p "$build" --checks="$checks" "$1" 2>/dev/null && touch "$0"'

cppcheck --quiet --std=c++17 --language=c++ --enable=warning,performance,portability --inline-suppr --error-exitcode=1 -j 2 \
    --cppcheck-build-dir="$seen/cppcheck" --suppressions-list=tests/lint/cppcheck.txt \
    -I include -I src -I . src platform tools
