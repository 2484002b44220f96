#!/bin/sh
# Thumbnail benchmark. Usage: bench/run_thumbnails.sh [BUILD_DIR]   (default: build)
#  (a) 200 generated video files: `klipvane --thumbnails-to` (one process, the thumbnail
#      service on its worker threads, an empty shared cache so every picture is decoded and
#      written) against `ffmpegthumbnailer -i FILE -o PNG -s 128` run once per file,
#      sequentially, on the same files; three rounds, each side timed in every round, best of
#      each kept. Goal: ratio <= 0.5.
#  (b) bench_thumbnails: the same 200 files asked for at once from an event loop; the
#      longest time the loop did not turn while they were made (goal: <= 16 ms), the longest
#      CPU time the main thread spent between two turns, and the same loop's longest stall
#      in the second before, with nothing to do (what the machine's scheduler alone costs).
set -eu
here=$(cd "$(dirname "$0")" && pwd)
build=${1:-$here/../build}
bin=$build/bin
if ! command -v ffmpegthumbnailer >/dev/null; then
    SUDO=""
    [ "$(id -u)" -eq 0 ] || SUDO=sudo
    DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends ffmpegthumbnailer >/dev/null
fi
. "$here/common.sh"
require "$bin/klipvane" "$bin/bench_thumbnails" ffmpeg ffmpegthumbnailer

# Four kinds of camera-like clips, each starting on a black second (a fade-in), 50 names each.
ff() { ffmpeg -nostdin -hide_banner -loglevel error -y "$@"; }
mkdir "$work/src" "$work/files"
clip() { # NAME SIZE SECONDS ENCODER-OPTIONS...
    name=$1 size=$2 seconds=$3; shift 3
    ff -f lavfi -i "color=black:size=$size:rate=25:duration=1" \
       -f lavfi -i "testsrc2=size=$size:rate=25:duration=$seconds" \
       -f lavfi -i "sine=duration=$((seconds + 1))" \
       -filter_complex "[0:v][1:v]concat=n=2:v=1[v]" -map "[v]" -map 2:a "$@" -c:a aac "$work/src/$name"
}
clip h264_1080p.mp4 1920x1080 9 -c:v libx264 -preset ultrafast -g 50 -pix_fmt yuv420p
clip h264_720p.mp4 1280x720 19 -c:v libx264 -preset veryfast -g 25 -pix_fmt yuv420p
clip mpeg4_sd.avi 720x576 9 -c:v mpeg4 -q:v 4 -g 12
clip hevc_720p.mkv 1280x720 9 -c:v libx265 -preset ultrafast -x265-params log-level=error -pix_fmt yuv420p
for n in $(seq 1 50); do
    for f in h264_1080p.mp4 h264_720p.mp4 mpeg4_sd.avi hevc_720p.mkv; do
        cp "$work/src/$f" "$work/files/$(printf %03d "$n")_$f"
    done
done
count=$(ls "$work/files" | wc -l)
cat "$work/files"/* > /dev/null # both read from the page cache

: > "$work/ours.txt"
: > "$work/theirs.txt"
for round in 1 2 3; do
    mkdir -p "$work/out$round/ours" "$work/out$round/theirs"
    t0=$(now_ms)
    XDG_CACHE_HOME="$work/cache$round" "$bin/klipvane" --thumbnails-to "$work/out$round/ours" --thumbnail-size 128 \
        "$work/files"/* 2> "$work/ours$round.log"
    t1=$(now_ms)
    for f in "$work/files"/*; do
        ffmpegthumbnailer -i "$f" -o "$work/out$round/theirs/$(basename "$f").png" -s 128 2>/dev/null
    done
    t2=$(now_ms)
    made=$(grep -c '(made)' "$work/ours$round.log" || true)
    theirs=$(ls "$work/out$round/theirs" | wc -l)
    echo "    round $round: klipvane_ms=$((t1 - t0)) (made $made) ffmpegthumbnailer_loop_ms=$((t2 - t1)) (wrote $theirs)"
    echo $((t1 - t0)) >> "$work/ours.txt"
    echo $((t2 - t1)) >> "$work/theirs.txt"
done
ours=$(least "$work/ours.txt")
theirs=$(least "$work/theirs.txt")
echo "(a) files=$count klipvane_ms=$ours ffmpegthumbnailer_loop_ms=$theirs ratio=$(ratio "$ours" "$theirs") (goal <= 0.5)"

: > "$work/stall.txt"
for round in 1 2 3; do
    XDG_CACHE_HOME="$work/stallcache$round" "$bin/bench_thumbnails" "$work/files"/* 2>/dev/null | tee -a "$work/stall.txt" | sed 's/^/    /'
done
field() { sed "s/.* $1=\([0-9.]*\).*/\1/" "$work/stall.txt" | sort -g | tail -1; }
echo "(b) over 3 rounds: longest stall while making $(field longest_stall_ms) ms (goal <= 16)," \
     "longest busy $(field longest_busy_ms) ms, longest stall when idle $(field idle_longest_stall_ms) ms"
