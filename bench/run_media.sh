#!/bin/sh
# Media intake benchmarks. Usage: bench/run_media.sh [BUILD_DIR]   (default: build)
#  (a) 500 generated files opened through the media model and the file open handler, in one
#      process, against one ffprobe process per file, sequentially, on the same files;
#      three rounds, each side timed in every round, best of each kept. Goal: ratio <= 0.5.
#  (b) a batch of 1,000 and of 10,000 files (reported by the model, no disk): the handler's
#      analysis, the removal of the failed third inside the pass, and the whole batch;
#      best of five each. Linear growth is 10x for 10x the files.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
build=${1:-$here/../build}
bin=$build/bin
. "$here/common.sh"
require "$bin/bench_media" ffmpeg ffprobe

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

: > "$work/ours.txt"
: > "$work/theirs.txt"
for round in 1 2 3; do
    t0=$(now_ms)
    "$bin/bench_media" open "$work/files"/* 2>/dev/null > "$work/open.txt"
    t1=$(now_ms)
    for f in "$work/files"/*; do
        ffprobe -v quiet -show_format -show_streams "$f" > /dev/null || true
    done
    t2=$(now_ms)
    echo "    round $round: model+handler_ms=$((t1 - t0)) ffprobe_loop_ms=$((t2 - t1)) ($(cat "$work/open.txt"))"
    echo $((t1 - t0)) >> "$work/ours.txt"
    echo $((t2 - t1)) >> "$work/theirs.txt"
done
ours=$(least "$work/ours.txt")
theirs=$(least "$work/theirs.txt")
echo "(a) files=$count model+handler_ms=$ours ffprobe_loop_ms=$theirs ratio=$(ratio "$ours" "$theirs") (goal <= 0.5)"

for n in 1000 10000; do
    for run in 1 2 3 4 5; do
        "$bin/bench_media" analyze $n 2>/dev/null
    done > "$work/analyze_$n.txt"
    sed 's/^/    /' "$work/analyze_$n.txt"
    for field in batch_ms analysis_ms removal_ms; do
        sed "s/.*$field=\([0-9.]*\).*/\1/" "$work/analyze_$n.txt" > "$work/${field}_$n.txt"
    done
done
line="(b)"
for field in analysis_ms removal_ms batch_ms; do
    small=$(least "$work/${field}_1000.txt")
    large=$(least "$work/${field}_10000.txt")
    line="$line $field 1000=$small 10000=$large growth=$(ratio "$large" "$small" 1)x;"
done
echo "$line (linear: 10x)"
