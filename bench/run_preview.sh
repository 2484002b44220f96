#!/bin/sh
# Preview benchmark. Usage: bench/run_preview.sh [BUILD_DIR]   (default: build)
# One 60 s 1080p25 H.264 file with a 10-second key-frame interval, generated with ffmpeg.
#  (a) exact-frame seek: median of 50 random seeks through the preview's frame reader against
#      a bare libav* seek-and-decode program (the floor), same positions. Goal: ratio <= 1.5.
#  (b) scrubbing: the playhead moved every 16 ms for 10 s; distinct frames shown per second
#      (goal >= 15).
#  (c) playback: `klipvane --place-on-timeline --play-ms 60000` on the file; frames dropped as
#      counted by the playback (goal < 1 %) and the longest GUI-thread stall (goal <= 16 ms).
set -eu
here=$(cd "$(dirname "$0")" && pwd)
build=${1:-$here/../build}
bin=$build/bin
. "$here/common.sh"
require "$bin/klipvane" "$bin/bench_preview" ffmpeg

file="$work/gop10s_1080p25.mp4"
ffmpeg -nostdin -hide_banner -loglevel error -y -f lavfi -i "testsrc2=size=1920x1080:rate=25:duration=60" \
    -c:v libx264 -preset veryfast -g 250 -keyint_min 250 -sc_threshold 0 -pix_fmt yuv420p "$file"

floor=$("$bin/bench_preview" floor "$file" 50 | sed -n 's/floor_median_ms=\([0-9.]*\).*/\1/p')
ours=$("$bin/bench_preview" seek "$file" 50 | sed -n 's/preview_median_ms=\([0-9.]*\).*/\1/p')
echo "(a) seeks=50 preview_median_ms=$ours floor_median_ms=$floor ratio=$(ratio "$ours" "$floor") (goal <= 1.5)"

"$bin/bench_preview" scrub "$file" 10 | sed 's/^/(b) /'

QT_QPA_PLATFORM=${QT_QPA_PLATFORM:-offscreen} "$bin/klipvane" --place-on-timeline --play-ms 60000 "$file" \
    2> "$work/play.log" || true
grep -o 'playback: [0-9]* frames shown.*' "$work/play.log" | sed 's/^/(c) /'
shown=$(sed -n 's/.*playback: \([0-9]*\) frames shown, \([0-9]*\) dropped.*/\1/p' "$work/play.log" | tail -1)
dropped=$(sed -n 's/.*playback: \([0-9]*\) frames shown, \([0-9]*\) dropped.*/\2/p' "$work/play.log" | tail -1)
[ -n "$shown" ] && echo "(c) dropped_fraction=$(ratio "$dropped" "$((shown + dropped))" 4) (goal < 0.01)"
