#!/bin/sh
# kvprobe on many files, with the allocator tuned at start-up (as shipped) against the C
# library's defaults (KLIPVANE_MALLOC_DEFAULTS=1, how kvprobe ran before the tuning), in
# one run. Usage: bench/run_probe.sh [BUILD_DIR [FILES]]   (default: build, 5000)
# FILES hard links of the generated media, per 10: 7 that open, 3 that fail. Three rounds,
# alternating, best wall time of each side; peak resident memory from /usr/bin/time. The two
# reports must be identical. Goal: defaults / tuned >= 1.7.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
build=$(cd "${1:-$here/../build}" && pwd)
count=${2:-5000}
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

: > "$work/tuned.txt"
: > "$work/defaults.txt"
cd "$work/files"
for round in 1 2 3; do
    /usr/bin/time -f "%e %M" -a -o "$work/tuned.txt" "$bin/kvprobe" ./* > "$work/tuned.json" 2>/dev/null || true
    KLIPVANE_MALLOC_DEFAULTS=1 /usr/bin/time -f "%e %M" -a -o "$work/defaults.txt" "$bin/kvprobe" ./* \
        > "$work/defaults.json" 2>/dev/null || true
done
cd - >/dev/null
cmp -s "$work/tuned.json" "$work/defaults.json" && same=identical || same=DIFFERENT
best() { sort -g "$1" | head -1 | awk '{ printf "%.0f ms, %.0f MB peak", $1 * 1000, $2 / 1024 }'; }
t=$(sort -g "$work/tuned.txt" | head -1 | cut -d' ' -f1)
d=$(sort -g "$work/defaults.txt" | head -1 | cut -d' ' -f1)
echo "kvprobe on $count files: tuned $(best "$work/tuned.txt"); defaults $(best "$work/defaults.txt")"
echo "rounds (s, kB): tuned $(tr '\n' ' ' < "$work/tuned.txt")| defaults $(tr '\n' ' ' < "$work/defaults.txt")"
echo "ratio defaults/tuned: $(ratio "$d" "$t" 2) (goal >= 1.7); reports $same ($(wc -c < "$work/tuned.json") bytes)"
[ "$same" = identical ] && [ -s "$work/tuned.json" ]
