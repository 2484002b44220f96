#!/bin/sh
# Builds the wire decoder's fuzz target with clang (libFuzzer, address and undefined-behaviour
# sanitizers) and runs it for a bounded time; the project's g++ has no libFuzzer.
#
#   tests/fuzz/run_frame_fuzzer.sh [OUT_DIR [SECONDS]]     (defaults: build/fuzz, 15)
#   tests/fuzz/run_frame_fuzzer.sh OUT_DIR 0 INPUT...       (replay inputs, e.g. a crash)
#
# OUT_DIR keeps the binaries, the seeds, the corpus the fuzzer grows (so later runs start where
# earlier ones stopped) and crashing inputs (crashes/). FUZZ_CXX picks the compiler.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
src=$(cd "$here/../.." && pwd)/platform/ipc
out=${1:-$here/../../build/fuzz}
seconds=${2:-15}
[ $# -gt 2 ] && shift 2 || set --
cxx=${FUZZ_CXX:-clang++}
fail() { echo "run_frame_fuzzer: $*" >&2; exit 1; }
# Rebuilt only when the target, the decoder or this script changed.
stale() { [ ! -x "$1" ] || [ -n "$(find "$here/fuzz_frame.cpp" "$src/UniqueIPC" "$0" -newer "$1")" ]; }

mkdir -p "$out/seeds" "$out/corpus" "$out/crashes"
flags="-std=c++17 -g -O1 -Wall -Wextra -I$src -fno-sanitize-recover=undefined"
if stale "$out/fuzz_frame" && ! "$cxx" $flags -fsanitize=fuzzer,address,undefined \
    "$here/fuzz_frame.cpp" "$src/UniqueIPC/Frame.cpp" -o "$out/fuzz_frame" 2> "$out/build.log"; then
    cat "$out/build.log" >&2
    fail "'$cxx' cannot build a libFuzzer target; it needs clang and its runtime (Debian: clang and libclang-rt-dev; scripts/setup.sh installs both)."
fi
if stale "$out/frame_seeds"; then
    "$cxx" $flags -fsanitize=address,undefined -DKV_FRAME_SEEDS "$here/fuzz_frame.cpp" "$src/UniqueIPC/Frame.cpp" \
        -o "$out/frame_seeds" || fail "building the seed writer failed"
fi
. "$here/fuzz_run.sh"
seed_or_replay "$out/fuzz_frame" "$out/frame_seeds" "$out/seeds" "$seconds" OUT_DIR "$@"
run_target "$out/fuzz_frame" "$seconds" "$out/corpus" "$out/seeds" "$out/crashes" "$out/last_run.log" \
    -max_len=4096 -dict="$here/frame.dict"
