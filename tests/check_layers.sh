#!/usr/bin/env bash
# Keeps the house in order: which folder under src/ may include what, and where conditions on the machine stand.
set -euo pipefail
cd "$1"

# For each folder, what its quoted includes may begin with.
declare -A allowed=(
    [util]='util/|platform/[a-z_]*\.h'
    [parser]='parser/|util/'
    [exec]='exec/|util/|parser/qry_lib_analyze_info\.h|api/qry_lib_db_rowset_lib\.h|platform/[a-z_]*\.h|qrylib/'
    [link]='link/|util/|parser/|exec/|api/qry_lib_db_rowset_lib\.h|qrylib/'
    [api]='api/|util/|parser/|exec/|link/|platform/[a-z_]*\.h|qrylib/'
)
wrong=$(
    for folder in "${!allowed[@]}"; do
        grep -rnE '^ *# *include "' "src/$folder" |
            grep -vE "include \"(${allowed[$folder]})|qrylib/" || true
    done
    for folder in src/*/; do
        [ -n "${allowed[$(basename "$folder")]:-}" ] || echo "$folder: no rule for this folder"
    done
    grep -rnE '^ *# *include .*(platform/host|tools)/' src include || true
    grep -rnE '^ *# *(if|ifdef|ifndef|elif)\b.*(__BYTE_ORDER|__ORDER_|ENDIAN|_LP64|__SIZEOF|__x86|__i386|__powerpc|__arm|__aarch|__linux|__unix|_WIN)' \
        src include tools tests 2>/dev/null | grep -v '^src/util/byte_order\.h' || true
)
if [ -n "$wrong" ]; then
    printf '%s\n' "$wrong" >&2
    exit 1
fi
