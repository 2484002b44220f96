#!/bin/sh
# Usage statistics benchmark. Usage: bench/run_statistics.sh [BUILD_DIR]
#
# Statistics::parse over windows of 500 and 5,000 tagged controls (growth; goal <= 12x for
# 10x the controls) against a walk that only finds the controls and reads their tags; the
# usage tracker taking bursts of 1,000 and 10,000 messages (GUI time per message must not
# grow) against a bare bus subscriber; and 10,000 messages a second for 3 s, paced like
# clicks (the log must keep up, GUI time per message the same at the end as at the start).
set -eu
here=$(cd "$(dirname "$0")" && pwd)
build=${1:-$here/../build}
bin=$build/bin
. "$here/common.sh"
require "$bin/bench_statistics"
export QT_QPA_PLATFORM=offscreen
banner
# Each record's log line goes to stderr, as in the host; here to nowhere.
"$bin/bench_statistics" parse 500 2>/dev/null | tee "$work/p500"
"$bin/bench_statistics" parse 5000 2>/dev/null | tee "$work/p5000"
a=$(sed 's/.*controls (+[0-9]* actions): \([0-9.]*\) ms.*/\1/' "$work/p500")
b=$(sed 's/.*controls (+[0-9]* actions): \([0-9.]*\) ms.*/\1/' "$work/p5000")
echo "parse growth 500 -> 5000: $(ratio "$b" "$a" 2)x (goal <= 12x)"
"$bin/bench_statistics" burst 1000 2>/dev/null
"$bin/bench_statistics" burst 10000 2>/dev/null
"$bin/bench_statistics" paced 10000 3 2>/dev/null
# CALLGRIND=1: instructions executed inside Statistics::parse for 500 and 5,000 controls, the
# growth without the memory hierarchy's share (valgrind, a minute or two).
if [ "${CALLGRIND:-0}" = 1 ] && command -v valgrind >/dev/null; then
    for n in 500 5000; do
        valgrind --tool=callgrind --callgrind-out-file="$work/cg.$n" "--toggle-collect=Statistics::parse(*" \
            "$bin/bench_statistics" parse $n >/dev/null 2>&1
        callgrind_annotate "$work/cg.$n" | awk -v n=$n '/PROGRAM TOTALS/ { gsub(",", "", $1); print $1 > "/dev/stderr"; printf "parse %d: %s instructions\n", n, $1 }' 2>"$work/i$n"
    done
    echo "parse instructions growth 500 -> 5000: $(ratio "$(cat "$work/i5000")" "$(cat "$work/i500")" 2)x"
fi
