#!/usr/bin/env bash
# Runs a part of the tests of the Python package on what install.sh installed: "types" for mypy, "api" and "fleet" for pytest.
# Exits with 77 where a module that the part needs is not installed.
#
# usage: run.sh PYTHON SOURCES INSTALLED PART
set -euo pipefail
python=$1
sources=$2
installed=$3
part=$4
here=$sources/tests/python

modules=$installed/lib/python3/dist-packages
libraries=$(dirname "$(find "$installed" -name 'libqrytext.so.1')")
export PYTHONPATH=$modules LD_LIBRARY_PATH=$libraries PYTHONDONTWRITEBYTECODE=1
unset QRYLIB_IMAGE QRYLIB_TRACE

needs() {
    "$python" -c "import $1" || exit 77
}
case $part in
types)
    needs mypy
    cd "$modules"
    exec "$python" -m mypy --config-file "$sources/python/pyproject.toml" --cache-dir /dev/null -p qrylib
    ;;
api)
    needs "pytest, pandas"
    exec "$python" -m pytest -q -p no:cacheprovider "$here"/test_[!f]*.py
    ;;
fleet)
    needs "pytest, distributed, pandas, matplotlib"
    exec "$python" -m pytest -q -p no:cacheprovider --durations=5 "$here"/test_fleet*.py
    ;;
esac
