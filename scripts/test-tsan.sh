#!/bin/sh
# Builds the threaded parts (IPC layer and controller, media pool and intake, the scheduler, the
# action queue) and the processes their tests start with ThreadSanitizer in build-tsan/, and runs
# those tests. Not part of CI: Qt 5's own code is not instrumented, so TSan cannot see the
# ordering that Qt's mutexes, event queues and thread start-up give, and reports races there
# that are not ones (docs/decisions/sanitizers.md). Reports go to build-tsan/tsan-reports/.
#
#   scripts/test-tsan.sh [CTEST_ARGS...]     (after scripts/setup.sh has installed the packages)
set -eu
ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD=${KLIPVANE_TSAN_BUILD_DIR:-$ROOT/build-tsan}
TESTS="tst_frame tst_singleinstance tst_ipcbaseprotocol tst_ipclinksdecorator tst_ipcprotocol tst_ipccontroller
  tst_filepool tst_mediaintake tst_scheduler tst_notifiedlockable tst_actiongateway"

export CCACHE_BASEDIR="$ROOT"
if [ ! -f "$BUILD/build.ninja" ]; then
    cmake -S "$ROOT" -B "$BUILD" -G Ninja -DKV_SANITIZE=thread -DCMAKE_BUILD_TYPE=Debug "-DCMAKE_CXX_FLAGS_DEBUG=-g -O1"
fi
# ninja builds each test's dependencies too: the companion, the helpers, kvprobe.
cmake --build "$BUILD" --target $TESTS

REPORTS=$BUILD/tsan-reports
rm -rf "$REPORTS"
mkdir -p "$REPORTS"
export TSAN_OPTIONS="log_path=$REPORTS/report:log_exe_name=1:second_deadlock_stack=1:suppressions=$ROOT/tests/sanitizers/tsan.supp"
cd "$BUILD"
status=0
ctest --output-on-failure -R "^($(echo $TESTS | tr ' ' '|'))\$" "$@" || status=$?
count=$(cat "$REPORTS"/* 2>/dev/null | grep -c '^WARNING: ThreadSanitizer' || true)
echo "test-tsan: $count report(s) in $REPORTS"
[ "$status" -eq 0 ] && [ "$count" -eq 0 ]
