#!/usr/bin/env bash
# Installs the package of Python and the shared libraries that it loads into a folder.
#
# usage: install.sh BUILD INSTALLED
set -euo pipefail

rm -rf "$2"
for component in runtime companion python; do
    cmake --install "$1" --component "$component" --prefix "$2" >/dev/null
done
