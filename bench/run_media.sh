#!/bin/sh
# Media intake benchmarks. Usage: bench/run_media.sh [BUILD_DIR]   (default: build)
#  (a) 500 generated files opened through the media model and the file open handler, in one
#      process, against one ffprobe process per file, sequentially, on the same files;
#  (b) the handler's analysis of a batch of 1,000 and of 10,000 files.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
build=${1:-$here/../build}
bin=$build/bin
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT INT TERM
export KLIPVANE_CONFIG_DIR="$work/config" KLIPVANE_LOG_DIR="$work/log" XDG_RUNTIME_DIR="$work/run"
mkdir -p "$KLIPVANE_CONFIG_DIR" "$KLIPVANE_LOG_DIR" "$XDG_RUNTIME_DIR"

now_ms() { date +%s%3N; }

"$here/../tests/support/make_test_media.sh" "$work/src" >/dev/null
mkdir "$work/files"
# 500 files: copies of the generated ones, mostly openable, a few of each bad kind.
i=0
for n in $(seq 1 50); do
    for f in h264_tiny.mp4 h264_1080p.mp4 audio.m4a still.png h265_aac.mp4 hdr_h264.mp4 h264_tiny.mp4 \
             h265.mp4 truncated.mp4 text.mp4; do
        i=$((i + 1))
        cp "$work/src/$f" "$work/files/$(printf %03d $i)_$f"
    done
done
count=$(ls "$work/files" | wc -l)
# Both read from the page cache: warm it once.
cat "$work/files"/* > /dev/null

t0=$(now_ms)
"$bin/bench_media" open "$work/files"/* 2>/dev/null | tee "$work/open.txt"
t1=$(now_ms)
for f in "$work/files"/*; do
    ffprobe -v quiet -show_format -show_streams "$f" > /dev/null || true
done
t2=$(now_ms)
ours=$((t1 - t0))
theirs=$((t2 - t1))
ratio=$(awk "BEGIN { printf \"%.3f\", $ours / $theirs }")
echo "(a) files=$count model+handler_ms=$ours ffprobe_loop_ms=$theirs ratio=$ratio (goal <= 0.5)"

for n in 1000 10000; do
    for run in 1 2 3 4 5; do
        "$bin/bench_media" analyze $n 2>/dev/null
    done | tee "$work/analyze_$n.txt" | sed 's/^/    /'
done
# Best of five of each size: the machine is shared, the minimum is the least disturbed.
best() { sed 's/.*analysis_ms=//' "$1" | sort -g | head -1; }
bestbatch() { sed 's/.*batch_ms=\([0-9.]*\).*/\1/' "$1" | sort -g | head -1; }
a1=$(best "$work/analyze_1000.txt"); a10=$(best "$work/analyze_10000.txt")
b1=$(bestbatch "$work/analyze_1000.txt"); b10=$(bestbatch "$work/analyze_10000.txt")
echo "(b) analysis_ms 1000=$a1 10000=$a10 growth=$(awk "BEGIN { printf \"%.1f\", $a10 / $a1 }")x;" \
     "whole batch_ms 1000=$b1 10000=$b10 growth=$(awk "BEGIN { printf \"%.1f\", $b10 / $b1 }")x (linear: 10x)"
