#!/usr/bin/env bash
# Keeps the house in order: which folder may include what, and where conditions on the machine stand.
set -euo pipefail
cd "$1"

# For each folder, what its includes of the project's own headers may begin with. A folder without a row follows the
# nearest one above it that has one.
rules() {
    cat <<'END'
include                     qrylib/
src/util                    util/ qrylib/ platform/[a-z_]*\.h
src/parser                  parser/ util/ qrylib/
src/exec                    exec/ util/ parser/qry_lib_analyze_info\.h api/qry_lib_db_rowset_lib\.h qrylib/ platform/[a-z_]*\.h
src/link                    link/ exec/ parser/ util/ api/qry_lib_db_rowset_lib\.h qrylib/
src/api                     api/ link/ exec/ parser/ util/ qrylib/ platform/[a-z_]*\.h
platform                    platform/[a-z_]*\.h
platform/host               platform/ tools/files/ exec/schema/ util/
tools/platform_check        tools/platform_check/ platform/[a-z_]*\.h exec/schema/ util/settings\.h
tools/text                  tools/text/ [a-z_]*\.inc qrytext/ qrylib/ api/ link/ exec/ parser/ util/ platform/host/qryhost\.h
tools/qrysh                 tools/qrysh/ tools/text/ qrytext/ qrylib/ platform/host/qryhost\.h
tools/qrysh/commands        tools/qrysh/ tools/files/ tools/text/ qrytext/ qrylib/ platform/host/qryhost\.h
tools/qrysh/prompt          tools/qrysh/(prompt|printing)/ tools/text/ qrytext/ qrylib/
tools/qrysh/transfer        tools/qrysh/transfer/ tools/files/ tools/text/ qrytext/ qrylib/ platform/host/qryhost\.h
tools/qrysh/printing        tools/qrysh/printing/ tools/text/ qrytext/ qrylib/ platform/host/qryhost\.h
tools/field                 tools/field/ tools/files/ [a-z_]*\.inc qrylib/ exec/schema/ util/ platform/
tools/files                 tools/files/
python                      qrytext/ qrylib/ platform/host/qryhost\.h
web                         qrytext/ qrylib/ platform/host/qryhost\.h
examples                    qrytext/ qrylib/ platform/host/qryhost\.h
bench                       [a-z_]*\.h qrylib/ exec/ platform/
fuzz                        fuzz/ tools/field/ tools/text/ qrytext/ qrylib/ exec/ parser/ platform/
tests                       replaced_new\.h exec/schema/
tests/c-api                 qrytext/ qrylib/ platform/host/qryhost\.h
tests/concurrency           concurrency/ unit/ qrylib/ platform/
tests/device                qrylib/ platform/[a-z_]*\.h
tests/fault                 fault/ replaced_new\.h unit/ qrylib/ platform/
tests/field                 field/ tools/field/ tools/files/ qrytext/ qrylib/ exec/schema/ platform/
tests/limits                limits/ replaced_new\.h link/ parser/ qrylib/ platform/[a-z_]*\.h
tests/oracle                oracle/ qrylib/ exec/schema/ platform/
tests/other_schema          unit/ exec/schema/
tests/packages              qrytext/ qrylib/ platform/host/qryhost\.h
tests/platform_calls        platform_calls/ unit/ exec/ link/ qrylib/ platform/[a-z_]*\.h
tests/platform_check        platform_check/ tools/platform_check/ platform/
tests/text                  qrytext/
tests/unit                  unit/ tools/ qrytext/ qrylib/ api/ link/ exec/ parser/ util/ platform/
END
}

own='["<](api|bench|concurrency|exec|fault|fuzz|limits|link|oracle|parser|platform|platform_check|qrylib|qrytext|tests|tools|unit|util)/|"'
machine='__BYTE_ORDER|__ORDER_|ENDIAN|_LP64|__SIZEOF|__x86|__i386|__powerpc|__arm|__aarch|__linux|__unix|_WIN'
sources() { grep -rnE --include='*.h' --include='*.hpp' --include='*.c' --include='*.cpp' --exclude-dir=build "$@"; }
wrong=$(
    { sources "^ *# *include +($own)" . || true; } | awk '
        NR == FNR {
            allowed[$1] = "^(" $2
            for (i = 3; i <= NF; ++i) {
                allowed[$1] = allowed[$1] "|" $i
            }
            allowed[$1] = allowed[$1] ")"
            next
        }
        {
            folder = substr($0, 3, index($0, ":") - 3)
            do {
                sub(/\/?[^\/]*$/, "", folder)
            } while (folder != "" && !(folder in allowed))
            header = $0
            sub(/^[^"<]*["<]/, "", header)
            if (folder == "") {
                print $0 ": no rule for this folder"
            } else if (header !~ allowed[folder]) {
                print $0
            }
        }' <(rules) -
    sources "^ *# *(if|ifdef|ifndef|elif)\b.*($machine)" . |
        grep -vE '^\./(platform|cmake)/' || true
)
if [ -n "$wrong" ]; then
    printf '%s\n' "$wrong" >&2
    exit 1
fi
