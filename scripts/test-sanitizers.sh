#!/bin/sh
# Builds everything with AddressSanitizer (leak detection on) and UndefinedBehaviorSanitizer in
# build-asan/ and runs the whole suite there. A report fails the run wherever it comes from: a
# test, or a host, companion or helper a test started.
#
#   scripts/test-sanitizers.sh [CTEST_ARGS...]      e.g. -R tst_secondlaunch
#
# Every report is written to build-asan/sanitizer-reports/report.<executable>.<pid> rather than
# to stderr, because a child's stderr is often read or dropped by the test that started it. A
# reporting process also exits with status 99, which a test that checks the status names; the
# files are what decides: any file left after ctest fails the run and is printed. The fuzz
# targets are skipped: they are always built with the sanitizers (tests/fuzz).
set -eu
ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD=${KLIPVANE_ASAN_BUILD_DIR:-$ROOT/build-asan}
SUPP=$ROOT/tests/sanitizers

# -O1 keeps the instrumented suite fast enough to run in CI beside the normal build; Debug
# keeps Qt's and our own assertions on.
KLIPVANE_BUILD_DIR=$BUILD "$ROOT/scripts/setup.sh" -DKV_SANITIZE=address,undefined \
    -DCMAKE_BUILD_TYPE=Debug "-DCMAKE_CXX_FLAGS_DEBUG=-g -O1"

REPORTS=$BUILD/sanitizer-reports
rm -rf "$REPORTS"
mkdir -p "$REPORTS"
common="log_path=$REPORTS/report:log_exe_name=1:exitcode=99"
export ASAN_OPTIONS="$common:detect_leaks=1:fast_unwind_on_malloc=0:halt_on_error=1:detect_stack_use_after_return=1:check_initialization_order=1"
export LSAN_OPTIONS="suppressions=$SUPP/lsan.supp:print_suppressions=0"
export UBSAN_OPTIONS="$common:halt_on_error=1:print_stacktrace=1"

cd "$BUILD"
status=0
ctest --output-on-failure -j "$(nproc)" -LE fuzz "$@" || status=$?

reports=$(find "$REPORTS" -type f | sort)
if [ -n "$reports" ]; then
    for r in $reports; do
        echo "==== $r" >&2
        cat "$r" >&2
    done
    echo "test-sanitizers: $(echo "$reports" | wc -l) sanitizer report(s), listed above" >&2
    exit 1
fi
[ "$status" -eq 0 ] || exit "$status"
echo "test-sanitizers: the suite passed under address,undefined with no report"
