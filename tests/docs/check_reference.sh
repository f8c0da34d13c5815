#!/usr/bin/env bash
# The headers make a reference without a gap: doxygen warns of everything that has no comment, of arguments and
# results that it does not name, and of names that it names wrongly.
#
# usage: check_reference.sh DOXYGEN ROOT OUTPUT
set -euo pipefail
doxygen=$1
output=$3
cd "$2"

mkdir -p "$output"
{
    cat docs/Doxyfile
    echo "OUTPUT_DIRECTORY = $output"
} | "$doxygen" -
