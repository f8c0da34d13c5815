#!/usr/bin/env bash
# The library alone asks for the functions that the platform contract declares, for all of them, and for nothing
# else but the C and C++ runtime, whose symbols carry a version.
#
# usage: check_undefined.sh LIBRARY CONTRACT_FOLDER
set -euo pipefail
library=$1
contract=$2

# The start files mention these weakly, whether or not the runtime has them.
start_files='^(__gmon_start__|_ITM_(de)?registerTMCloneTable)$'

asked=$(nm -D --undefined-only "$library" | awk '{ print $NF }' |
    grep -vE '@(GLIBC|GLIBCXX|CXXABI|GCC)_' | grep -vE "$start_files" | sort -u)
declared=$(cat "$contract"/*.h | sed -E 's@/\*.*\*/@@' | awk '/\/\*/ { comment = 1 } !comment { print } /\*\// { comment = 0 }' |
    grep -v '^ *#' | tr '\n' ' ' | sed -E 's/typedef struct \{[^}]*\}[^;]*;//g; s/typedef [^;]*;//g; s/static_assert\([^;]*;//g; s/__attribute__\(\([^;]*;/;/g' |
    grep -oE '[A-Za-z_0-9]+\(' | tr -d '(' | sort -u)
if [ -z "$declared" ] || ! diff <(printf '%s\n' "$declared") <(printf '%s\n' "$asked"); then
    echo "undefined symbols (>) differ from the platform contract (<)" >&2
    exit 1
fi
echo "$(wc -l <<<"$declared") functions of the platform contract, and nothing else"
