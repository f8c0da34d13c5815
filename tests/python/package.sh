#!/usr/bin/env bash
# Builds the Debian package python3-qrylib, unpacks it, and runs the example suite that it has with the package's own plugin,
# on the shared libraries that install.sh installed. Where lintian is installed, it has no error to tell.
#
# usage: package.sh PYTHON BUILD INSTALLED
set -euo pipefail
python=$1
libraries=$(dirname "$(find "$3" -name 'libqrytext.so.1')")

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
(cd "$2" && cpack -G DEB -B "$scratch" -D CPACK_COMPONENTS_ALL=python) >"$scratch/log" 2>&1 || { cat "$scratch/log" >&2; exit 1; }
packages=("$scratch"/python3-qrylib_*_all.deb)
[ ${#packages[@]} -eq 1 ]
! command -v lintian >/dev/null || lintian --fail-on error --allow-root "${packages[0]}"
dpkg-deb -x "${packages[0]}" "$scratch/root"

export LD_LIBRARY_PATH=$libraries PYTHONPATH=$scratch/root/usr/lib/python3/dist-packages PYTHONDONTWRITEBYTECODE=1
"$python" -c 'import importlib.metadata, qrylib; assert importlib.metadata.version("qrylib") == qrylib.version()'
"$python" -m pytest -q -p no:cacheprovider "$scratch/root/usr/share/doc/python3-qrylib/examples/device_tests"
