#!/usr/bin/env bash
# Installs what the project needs from Debian's packages: all of it, or with --build only what the library and the shell are
# built with, and what is named behind it. Quick and quiet when all is there.
set -euo pipefail

packages=(cmake ninja-build g++ pkg-config libgtest-dev libcli11-dev libfmt-dev nlohmann-json3-dev libedit-dev
    libutf8proc-dev libsqlite3-dev file dpkg-dev)
if [ "${1:-}" = --build ]; then
    packages+=("${@:2}")
else
    packages+=(libbenchmark-dev sqlite3 tmux mandoc doxygen clang clang-tidy cppcheck libclang-rt-dev
        valgrind g++-powerpc-linux-gnu qemu-user abigail-tools gcovr python3 python3-jsonschema spin chromium emscripten
        python3-pytest python3-pytest-xdist python3-pandas python3-dask python3-distributed python3-matplotlib mypy)
    command -v npm >/dev/null || packages+=(nodejs npm) # whatever node there is serves
fi

missing=()
for package in "${packages[@]}"; do
    if [ "$(dpkg-query -W -f='${Status}' "$package" 2>/dev/null)" != "install ok installed" ]; then
        missing+=("$package")
    fi
done
[ ${#missing[@]} -eq 0 ] && exit 0

as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)
echo "installing: ${missing[*]}"
log=$(mktemp)
trap 'rm -f "$log"' EXIT
if ! { "${as_root[@]}" apt-get update -q && "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -q --no-install-recommends "${missing[@]}"; } >"$log" 2>&1; then
    cat "$log" >&2
    exit 1
fi
