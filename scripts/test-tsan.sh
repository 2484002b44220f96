#!/bin/sh
# Builds the threaded parts and the processes their tests start with ThreadSanitizer in
# build-tsan/, and runs the tests where TSan gives signal: the IPC layer and controller, the
# single-instance lock, the scheduler and the action queue. Not part of CI. Qt 5's own code is
# not instrumented, so TSan cannot see the ordering that Qt's mutexes, event queue and
# semaphores give: every hand-off through them looks like a race. The media pool and intake
# tests hand each result through Qt's event queue and are too noisy to gate on; they are built
# too and run with `-R 'tst_filepool|tst_mediaintake'` (docs/decisions/sanitizers.md).
# Reports go to build-tsan/tsan-reports/.
#
#   scripts/test-tsan.sh [CTEST_ARGS...]     (after scripts/setup.sh has installed the packages)
set -eu
ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD=${KLIPVANE_TSAN_BUILD_DIR:-$ROOT/build-tsan}
TESTS="tst_frame tst_singleinstance tst_ipcbaseprotocol tst_ipclinksdecorator tst_ipcprotocol tst_ipccontroller
  tst_scheduler tst_notifiedlockable tst_actiongateway"
NOISY="tst_filepool tst_mediaintake"

export CCACHE_BASEDIR="$ROOT"
if [ ! -f "$BUILD/build.ninja" ]; then
    cmake -S "$ROOT" -B "$BUILD" -G Ninja -DKV_SANITIZE=thread -DCMAKE_BUILD_TYPE=Debug "-DCMAKE_CXX_FLAGS_DEBUG=-g -O1"
fi
# ninja builds each test's dependencies too: the companion, the helpers, kvprobe.
cmake --build "$BUILD" --target $TESTS $NOISY

REPORTS=$BUILD/tsan-reports
rm -rf "$REPORTS"
mkdir -p "$REPORTS"
# ignore_noninstrumented_modules: accesses made inside Qt (QSignalSpy, QList growth, thread
# pool bookkeeping) are not judged, since the locks that order them are invisible; hand-offs of
# ours that Qt orders remain, and tests/sanitizers/tsan.supp names each.
export TSAN_OPTIONS="log_path=$REPORTS/report:log_exe_name=1:ignore_noninstrumented_modules=1:second_deadlock_stack=1:suppressions=$ROOT/tests/sanitizers/tsan.supp"
cd "$BUILD"
status=0
ctest --output-on-failure -R "^($(echo $TESTS | tr ' ' '|'))\$" "$@" || status=$?
count=$(cat "$REPORTS"/* 2>/dev/null | grep -c '^WARNING: ThreadSanitizer' || true)
echo "test-tsan: $count report(s) in $REPORTS"
[ "$status" -eq 0 ] && [ "$count" -eq 0 ]
