#!/usr/bin/env bash
# Checks the model of the value lock with spin: every order of the steps of the processes, every kill and every stop.
# Then the same for each change to the order of the steps, which must be found out.
# usage: run.sh FOLDER
set -euo pipefail

model=$(cd "$(dirname "$0")" && pwd)/value_lock.pml
folder=$1
mkdir -p "$folder"
cd "$folder"

# check NAME KIND [-D...]: builds and runs the checker in a folder of its own; its report goes to NAME/report.
# KIND is safety (assertions, processes that wait for ever) or progress (a process that goes in circles).
check() {
    local name=$1 kind=$2
    shift 2
    rm -rf "$name" && mkdir "$name"
    (
        cd "$name"
        spin -a "$@" "$model" >spin.log
        if [ "$kind" = progress ]; then
            cc -O2 -w -DNP -DCOLLAPSE -DVECTORSZ=4096 -o pan pan.c
            ./pan -m1000000 -l >report
        else
            cc -O2 -w -DSAFETY -DCOLLAPSE -o pan pan.c
            ./pan -m1000000 >report
        fi
    )
    errors=$(sed -n 's/.*errors: \([0-9]*\).*/\1/p' "$name/report")
    states=$(sed -n 's/^ *\([0-9.e+]*\) states, stored.*/\1/p' "$name/report")
    if [ -z "$errors" ] || grep -q 'max search depth too small\|out of memory' "$name/report"; then
        echo "$name: the checker did not come to its end" >&2
        cat "$name/report" >&2
        exit 1
    fi
}

expect_none() {
    check "$@"
    echo "$1: $states states, $errors errors"
    if [ "$errors" -ne 0 ]; then
        cat "$1/report" >&2
        exit 1
    fi
}

expect_some() {
    check "$@"
    echo "$1: found out, $(sed -n '/^pan:1: /{s///p;q}' "$1/report")"
    if [ "$errors" -eq 0 ]; then
        echo "$1: this change of the steps is not found out" >&2
        exit 1
    fi
}

expect_none two_writers_two_kills safety -DKILLS=2 -DSTOPS=0
expect_none two_writers_stopped safety -DKILLS=0 -DSTOPS=1
expect_none killed_and_stopped safety -DKILLS=2 -DSTOPS=1 -DOPENERS -DREADERS=1 -DREAD_ONLY=0
expect_none three_openers safety -DOPENERS -DWRITERS=3 -DREADERS=1 -DSTOPS=0
expect_none progress progress -DKILLS=1 -DSTOPS=1 -DOPENERS -DREADERS=1 -DREAD_ONLY=0
for change in WRITE_BEFORE_BEGIN NAME_AFTER_BEGIN END_BEFORE_WRITTEN UNNAME_BEFORE_END SETTLE_ENDS_FIRST \
    READER_LOOKS_ONCE READER_TAKES_TORN; do
    expect_some "$change" safety "-DCHANGE_$change" -DOPENERS -DREADERS=1
done
expect_some READER_WAITS progress -DCHANGE_READER_WAITS -DKILLS=0
