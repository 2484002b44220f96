#!/bin/sh
# Builds the media reader's fuzz target with clang (libFuzzer, address and undefined-behaviour
# sanitizers on our code; FFmpeg and Qt are the system's) and runs it for a bounded time.
#
#   tests/fuzz/run_media_fuzzer.sh [OUT_DIR [SECONDS]]     (defaults: build/fuzz, 15)
#   tests/fuzz/run_media_fuzzer.sh OUT_DIR 0 INPUT...       (replay inputs, e.g. a crash)
#
# Seeds are the small files of tests/support/make_test_media.sh (made once into
# OUT_DIR/media_seeds); the grown corpus stays in OUT_DIR/media_corpus, crashing inputs in
# OUT_DIR/media_crashes. FUZZ_CXX picks the compiler.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/../.." && pwd)
src=$root/platform/model
out=${1:-$root/build/fuzz}
seconds=${2:-15}
[ $# -gt 2 ] && shift 2 || set --
cxx=${FUZZ_CXX:-clang++}
fail() { echo "run_media_fuzzer: $*" >&2; exit 1; }
stale() { [ ! -x "$1" ] || [ -n "$(find "$here/fuzz_media_open.cpp" "$src/Media" "$src/MediaReader" "$0" -newer "$1")" ]; }

mkdir -p "$out/media_seeds" "$out/media_corpus" "$out/media_crashes"
deps=$(pkg-config --cflags --libs Qt5Core libavformat libavcodec libavutil) || fail "pkg-config cannot find Qt5Core or FFmpeg"
if stale "$out/fuzz_media_open" && ! "$cxx" -std=c++17 -g -O1 -fPIC -Wall -Wextra -I"$src" -fno-sanitize-recover=undefined \
    -fsanitize=fuzzer,address,undefined "$here/fuzz_media_open.cpp" "$src/MediaReader/FFmpegReader.cpp" "$src/MediaReader/StreamAnalysis.cpp" $deps \
    -o "$out/fuzz_media_open" 2> "$out/media_build.log"; then
    cat "$out/media_build.log" >&2
    fail "'$cxx' cannot build a libFuzzer target; it needs clang and its runtime (Debian: clang and libclang-rt-dev; scripts/setup.sh installs both)."
fi
if [ -z "$(ls "$out/media_seeds")" ]; then
    media=$(mktemp -d)
    sh "$root/tests/support/make_test_media.sh" "$media" || fail "making the seed media failed (is ffmpeg installed?)"
    # Small files only: the fuzzer mutates them byte by byte.
    find "$media" -type f -size -64k -exec cp {} "$out/media_seeds/" \;
    rm -rf "$media"
fi
if [ "$seconds" = 0 ]; then
    [ $# -gt 0 ] || fail "nothing to replay: give the inputs after OUT_DIR 0"
    exec "$out/fuzz_media_open" "$@"
fi

. "$here/fuzz_run.sh"
run_target "$out/fuzz_media_open" "$seconds" "$out/media_corpus" "$out/media_seeds" "$out/media_crashes" \
    "$out/media_last_run.log" -max_len=65536
