#!/bin/sh
# Builds the reference host and runs it with sample media. With a display it opens the
# editor window; without one it runs offscreen, saves a screenshot of the main window,
# prints what the editor did and exits.
set -eu
ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD=${KLIPVANE_BUILD_DIR:-$ROOT/build}
"$ROOT/scripts/setup.sh"

SAMPLES="$BUILD/samples"
mkdir -p "$SAMPLES"
[ -f "$SAMPLES/beach.mp4" ] || ffmpeg -nostdin -loglevel error -y -f lavfi -i testsrc2=size=640x360:rate=25 \
    -t 2 -c:v libx264 -preset ultrafast -pix_fmt yuv420p "$SAMPLES/beach.mp4"
[ -f "$SAMPLES/sunset.png" ] || ffmpeg -nostdin -loglevel error -y -f lavfi -i mandelbrot=size=640x360 \
    -frames:v 1 "$SAMPLES/sunset.png"
[ -f "$SAMPLES/theme.m4a" ] || ffmpeg -nostdin -loglevel error -y -f lavfi -i sine=frequency=440:duration=2 \
    -c:a aac "$SAMPLES/theme.m4a"
[ -f "$SAMPLES/notes.txt" ] || echo "not a media file" > "$SAMPLES/notes.txt"

if [ -n "${DISPLAY:-}" ]; then
    exec "$BUILD/bin/klipvane" "$SAMPLES/beach.mp4" "$SAMPLES/sunset.png" "$SAMPLES/theme.m4a" "$SAMPLES/notes.txt" "$@"
fi

SHOT="$BUILD/klipvane-screenshot.png"
echo "run: no display; running the editor offscreen and saving its window to $SHOT"
LOG="$BUILD/klipvane-run.log"
status=0
QT_QPA_PLATFORM=offscreen "$BUILD/bin/klipvane" --screenshot "$SHOT" --quit-after-ready 1500 \
    "$SAMPLES/beach.mp4" "$SAMPLES/sunset.png" "$SAMPLES/theme.m4a" "$SAMPLES/notes.txt" "$@" >"$LOG" 2>&1 || status=$?
# glog's prefix (severity, time, thread, source) hides what happened; show the messages.
sed -n 's/^[IWE][0-9.: ]* [0-9]* [^]]*\] //p' "$LOG"
[ "$status" -eq 0 ] && echo "run: screenshot saved to $SHOT" || echo "run: the editor exited with status $status (log: $LOG)"
exit "$status"
