#!/bin/sh
# kvprobe on many files as it runs now against how it ran before the fast paths, in one run:
#   now      the allocator tuned at start-up, H.264 headers read ahead of the stream analysis
#   alloc    the allocator tuned, FFmpeg's full analysis (KLIPVANE_FULL_STREAM_ANALYSIS=1)
#   before   the C library's defaults and the full analysis (KLIPVANE_MALLOC_DEFAULTS=1 too)
# With BASELINE=/path/to/kvprobe a kvprobe built from an older commit runs as a fourth side
# (its report compared with python3).
# Usage: bench/run_probe.sh [BUILD_DIR [FILES [ROUNDS]]]   (default: build, 5000, 3)
# FILES hard links of the generated media, per 10: 7 that open, 3 that fail. The sides
# alternate round by round; best wall time of each; peak resident memory from /usr/bin/time.
# All reports must be identical. Goal: before / now >= 1.7.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
build=$(cd "${1:-$here/../build}" && pwd)
count=${2:-5000}
rounds=${3:-3}
bin=$build/bin
. "$here/common.sh"
require "$bin/kvprobe" ffmpeg /usr/bin/time

"$here/../tests/support/make_test_media.sh" "$work/src" >/dev/null
mkdir "$work/files"
i=0
while [ $i -lt "$count" ]; do
    for f in h264_tiny.mp4 h264_1080p.mp4 audio.m4a still.png h265_aac.mp4 hdr_h264.mp4 h264_tiny.mp4 \
             h265.mp4 truncated.mp4 text.mp4; do
        i=$((i + 1))
        [ $i -le "$count" ] && ln "$work/src/$f" "$work/files/$(printf %05d $i)_$f"
    done
done
cat "$work/src"/* > /dev/null

sides="now alloc before"
[ -n "${BASELINE:-}" ] && sides="$sides baseline"
run() { # SIDE: one kvprobe run, its time and memory appended to SIDE.txt
    case $1 in
    now) set -- "$1" env "$bin/kvprobe" ;;
    alloc) set -- "$1" env KLIPVANE_FULL_STREAM_ANALYSIS=1 "$bin/kvprobe" ;;
    before) set -- "$1" env KLIPVANE_FULL_STREAM_ANALYSIS=1 KLIPVANE_MALLOC_DEFAULTS=1 "$bin/kvprobe" ;;
    baseline) set -- "$1" env "$BASELINE" ;;
    esac
    side=$1
    shift
    /usr/bin/time -f "%e %M" -a -o "$work/$side.txt" "$@" ./* > "$work/$side.json" 2>/dev/null || true
}
cd "$work/files"
for side in $sides; do : > "$work/$side.txt"; done
round=0
while [ $round -lt "$rounds" ]; do
    round=$((round + 1))
    for side in $sides; do run "$side"; done
done
cd - >/dev/null

banner
# kvprobe before the fast paths listed the failed files in an order of its own; compared
# with the lists sorted.
normalized() {
    python3 -c 'import json,sys
r=json.load(open(sys.argv[1]))
for k,v in r.get("analysis",{}).items():
    if isinstance(v,list): v.sort()
print(json.dumps(r,sort_keys=True))' "$1"
}
same=identical
for side in $sides; do
    if [ "$side" = baseline ]; then
        [ "$(normalized "$work/now.json")" = "$(normalized "$work/$side.json")" ] || same=DIFFERENT
    else
        cmp -s "$work/now.json" "$work/$side.json" || same=DIFFERENT
    fi
    printf '%-8s best %s; rounds (s, kB): %s\n' "$side" \
        "$(sort -g "$work/$side.txt" | head -1 | awk '{ printf "%.0f ms, %.0f MB peak", $1 * 1000, $2 / 1024 }')" \
        "$(tr '\n' ' ' < "$work/$side.txt")"
done
best() { sort -g "$work/$1.txt" | head -1 | cut -d' ' -f1; }
echo "kvprobe on $count files: before / now $(ratio "$(best before)" "$(best now)" 2) (goal >= 1.7);" \
     "allocator alone $(ratio "$(best before)" "$(best alloc)" 2)"
[ -n "${BASELINE:-}" ] && echo "baseline / now $(ratio "$(best baseline)" "$(best now)" 2)"
echo "reports $same ($(wc -c < "$work/now.json") bytes)"
[ "$same" = identical ] && [ -s "$work/now.json" ]
