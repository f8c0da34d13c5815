#!/usr/bin/env bash
# The lines of C on the testing page, those of C++ in the README, and the example at the head of the C++ header compile
# as they stand.
#
# usage: check_snippets.sh ROOT C_COMPILER C++_COMPILER
set -euo pipefail
cd "$1"
c_compiler=$2
cxx_compiler=$3

# compiles HEADER COMMAND...: whether standard input compiles as a function's body.
compiles() {
    local body
    body=$(cat)
    [ -n "$body" ] || { echo "there is no snippet for $1" >&2; exit 1; }
    printf '#include <%s>\n%s\nint main(void) {\n%s\nreturn 0;\n}\n' "$1" "${extra:-}" "$body" |
        "${@:2}" -Wall -Wextra -Wpedantic -Werror -fsyntax-only -Iinclude -I. -
}

awk '/^```c$/ { inside = 1; next } /^```/ { inside = 0 } inside' docs/testing.md |
    compiles platform/host/qryhost.h "$c_compiler" -std=c99 -x c
extra='#include <iostream>'
awk '/^```cpp$/ { inside = 1; next } /^```/ { inside = 0 } inside' README.md |
    compiles qrylib/qrylib.hpp "$cxx_compiler" -std=c++17 -x c++
awk '/^ \*     / { print substr($0, 8); inside = 1; next } inside { exit }' include/qrylib/qrylib.hpp |
    compiles qrylib/qrylib.hpp "$cxx_compiler" -std=c++17 -x c++
