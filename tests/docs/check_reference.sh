#!/usr/bin/env bash
# The headers and pages make a reference without a gap: doxygen warns of everything that has no comment, of arguments and
# results that it does not name, and of names that it names wrongly. Its links are alive, every function has an example, and
# the manual pages lint clean.
#
# usage: check_reference.sh ROOT OUTPUT PYTHON MANDOC
set -euo pipefail
root=$1
output=$2
python=$3
mandoc=$4

"$root/scripts/reference.sh" "$output"
"$python" -B "$root/tests/docs/check_html.py" "$output"
"$mandoc" -Tlint -W warning "$output"/man/*.3
