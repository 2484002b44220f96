#!/bin/sh
# Builds the wire decoder's fuzz target with clang (libFuzzer, address and undefined-
# behaviour sanitizers) and runs it for a bounded time.
#
#   tests/fuzz/run_frame_fuzzer.sh [OUT_DIR [SECONDS]]        (defaults: build/fuzz, 15)
#   tests/fuzz/run_frame_fuzzer.sh OUT_DIR 0 INPUT...          (replay inputs, e.g. a crash)
#
# The project itself is built with g++, which has no libFuzzer, so the target is compiled
# here; it needs only the decoder (plain C++). OUT_DIR receives the binaries, the seeds
# (written at every run by frame_seeds), the corpus the fuzzer grows (kept between runs so
# that later runs start where earlier ones stopped) and any crashing input (crashes/).
# Environment: FUZZ_CXX (default clang++), FUZZ_MAX_LEN (default 4096).
set -eu
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/../.." && pwd)
out=${1:-$root/build/fuzz}
seconds=${2:-15}
[ $# -gt 2 ] && shift 2 || set --
cxx=${FUZZ_CXX:-clang++}

fail() {
    echo "run_frame_fuzzer: $*" >&2
    exit 1
}

command -v "$cxx" >/dev/null 2>&1 ||
    fail "'$cxx' not found. The fuzz target needs clang with its libFuzzer runtime (Debian: clang and libclang-rt-dev; scripts/setup.sh installs both)."

mkdir -p "$out/seeds" "$out/corpus" "$out/crashes"

# Without the runtime package clang compiles fine and fails only when linking; say why.
probe="$out/probe.cpp"
echo 'extern "C" int LLVMFuzzerTestOneInput(const unsigned char*, unsigned long) { return 0; }' > "$probe"
if ! "$cxx" -fsanitize=fuzzer,address,undefined "$probe" -o "$out/probe" 2> "$out/probe.log"; then
    cat "$out/probe.log" >&2
    fail "'$cxx' cannot link a libFuzzer target: the clang runtime libraries are missing (Debian: apt-get install libclang-rt-dev, or libclang-rt-N-dev matching clang N; scripts/setup.sh installs it)."
fi

src="$root/platform/ipc"
sources="$here/fuzz_frame.cpp $here/frame_seeds.cpp $src/UniqueIPC/Frame.cpp $src/UniqueIPC/Frame.h $src/UniqueIPC/ApiVersion.h $0"
stale() {
    [ -x "$1" ] || return 0
    for f in $sources; do
        [ "$f" -nt "$1" ] && return 0
    done
    return 1
}
flags="-std=c++17 -g -O1 -I$src -Wall -Wextra"
if stale "$out/fuzz_frame"; then
    echo "run_frame_fuzzer: building $out/fuzz_frame with $cxx"
    "$cxx" $flags -fsanitize=fuzzer,address,undefined -fno-sanitize-recover=undefined \
        "$here/fuzz_frame.cpp" "$src/UniqueIPC/Frame.cpp" -o "$out/fuzz_frame" || fail "building the fuzz target failed"
fi
if stale "$out/frame_seeds"; then
    "$cxx" $flags -fsanitize=address,undefined -fno-sanitize-recover=undefined \
        "$here/frame_seeds.cpp" "$src/UniqueIPC/Frame.cpp" -o "$out/frame_seeds" || fail "building the seed writer failed"
fi
"$out/frame_seeds" "$out/seeds" || fail "writing the seed corpus failed"

export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"
export ASAN_OPTIONS="${ASAN_OPTIONS:-}${ASAN_OPTIONS:+:}abort_on_error=0:detect_leaks=1"

if [ "$seconds" = 0 ]; then
    [ $# -gt 0 ] || fail "nothing to replay: give the inputs after OUT_DIR 0"
    exec "$out/fuzz_frame" "$@"
fi

status=0
: > "$out/run.stamp"
"$out/fuzz_frame" -max_total_time="$seconds" -max_len="${FUZZ_MAX_LEN:-4096}" -timeout=10 -rss_limit_mb=2048 \
    -dict="$here/frame.dict" -artifact_prefix="$out/crashes/" -print_final_stats=1 \
    "$out/corpus" "$out/seeds" > "$out/last_run.log" 2>&1 || status=$?
grep -E '^(stat::number_of_executed_units|stat::new_units_added|#[0-9]+ +DONE)' "$out/last_run.log" || true
if [ "$status" -ne 0 ]; then
    tail -n 60 "$out/last_run.log" >&2
    echo "run_frame_fuzzer: the fuzz target failed (status $status); full log: $out/last_run.log" >&2
    find "$out/crashes" -type f -newer "$out/run.stamp" | while read -r crash; do
        echo "  input: $crash   replay: $0 $out 0 $crash" >&2
    done
    exit 1
fi
echo "run_frame_fuzzer: no failure in ${seconds}s; corpus: $(ls "$out/corpus" | wc -l) inputs"
