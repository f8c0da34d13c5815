#!/usr/bin/env bash
# Builds the Debian packages into build/package/packages and, where lintian is installed, checks them. Works from
# any folder; installs what the build needs.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install_packages.sh --build doxygen python3
packages=build/package/packages
rm -rf "$packages"
cmake --preset package >/dev/null
cmake --build --preset package
cpack --preset package
if command -v lintian >/dev/null; then
    lintian --fail-on error --allow-root "$packages"/*.deb
fi
