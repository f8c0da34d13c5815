#!/usr/bin/env bash
# Compares a library's exported functions and records with those written down here. A change, an addition too,
# fails until scripts/update_abi.sh has been run. Ends with 77, skipped, where the two cannot be compared.
#
# usage: check_abi.sh LIBRARY PROCESSOR
set -euo pipefail
library=$1
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
promised=$here/libqrylib-$2.abi

if [ ! -e "$promised" ]; then
    echo "skipped: tests/abi holds nothing for the processor $2"
    exit 77
fi
if [[ $(readelf -S "$library") != *.debug_info* ]]; then
    echo "skipped: the library was built without debug information"
    exit 77
fi
versions=$(readelf -V "$library" | grep -oE 'Name: QRYLIB_[0-9.]+' | sort -u)
if [ "$versions" != "Name: QRYLIB_1" ]; then
    echo "version nodes: $versions" >&2
    exit 1
fi

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
"$here/../../scripts/dump_abi.sh" "$library" "$scratch/built.abi"
grep -q 'QRY_LIB_COLUMN_VALUE' "$scratch/built.abi"
if ! abidiff --harmless "$promised" "$scratch/built.abi"; then
    echo "the library is not what tests/abi promises; if that is meant, run scripts/update_abi.sh" >&2
    exit 1
fi
