#!/usr/bin/env bash
# What the package libqrylib-doc installs is complete in itself: links of its pages lead to files of it, and so do the paths
# that its manual pages name.
#
# usage: reference.sh BUILD SOURCES PYTHON
set -euo pipefail
build=$1
sources=$2
python=$3

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cmake --install "$build" --component documentation --prefix "$scratch/usr" >/dev/null
"$python" -B "$sources/tests/docs/check_html.py" --links "$scratch/usr/share/doc/libqrylib-doc/html"

count=0
for page in "$scratch"/usr/share/man/man3/*.3.gz; do
    count=$((count + 1))
    while IFS= read -r path; do
        [ -e "$scratch$path" ] || { echo "$(basename "$page") names $path, which is not there" >&2; exit 1; }
    done < <(gzip -dc "$page" | sed -n 's/^\.Pa \(\/usr\/.*\)/\1/p')
done
[ "$count" -gt 100 ] || { echo "only $count manual pages" >&2; exit 1; }
for name in qrylib qrytext qryhost qry_lib_db_exec_query qrytext_run qryhost_open; do
    [ -e "$scratch/usr/share/man/man3/$name.3.gz" ] || { echo "there is no $name(3)" >&2; exit 1; }
done
