#!/bin/bash
# Intake while the editor works. Usage: bench/run_intake.sh [BUILD_DIR [FILES [LAUNCHES]]]
#                                                            (default: build, 5000, 20)
# The editor runs offscreen with --log-stalls 20. It is handed a folder of FILES files (hard
# links of one small clip) by a second launch; while that batch opens, LAUNCHES second
# launches `klipvane FILE` follow one another, 100 ms apart.
#  delivered: from a launch's start to the editor's log line "command: AddFiles FILE", for
#             the launches started before the batch was reported (median and worst);
#             goal: median <= 100 ms;
#  GUI stall: the longest "stall: <ms> ms" the editor logged between the hand-off of the
#             folder and "media batch reported"; goal: none over 50 ms.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
build=$(cd "${1:-$here/../build}" && pwd)
count=${2:-5000}
launches=${3:-20}
bin=$build/bin
. "$here/common.sh"
require "$bin/klipvane" ffmpeg
editor=""
stop_editor() {
    if [ -n "$editor" ]; then kill "$editor" 2>/dev/null; wait "$editor" 2>/dev/null || true; fi
    editor=""
}
trap 'stop_editor; rm -rf "$work"' EXIT
trap 'exit 130' INT TERM
# The log's times of day and $EPOCHREALTIME compare in one zone.
export TZ=UTC QT_QPA_PLATFORM=offscreen KLIPVANE_DISMISS_DIALOGS_MS=0 KLIPVANE_IPC_DIR="$work/ipc"
mkdir -m 0700 "$KLIPVANE_IPC_DIR"

"$here/../tests/support/make_test_media.sh" "$work/src" >/dev/null
mkdir "$work/many" "$work/extra"
for i in $(seq 1 "$count"); do ln "$work/src/h264_tiny.mp4" "$work/many/clip$i.mp4"; done
for i in $(seq 1 "$launches"); do ln "$work/src/h264_tiny.mp4" "$work/extra/late$i.mp4"; done
cat "$work/src/h264_tiny.mp4" > /dev/null

wait_for() { # FILE TEXT: up to 60 s
    local tries=0
    until grep -qF -- "$2" "$1" 2>/dev/null; do
        tries=$((tries + 1)); [ $tries -le 6000 ] || return 1; sleep 0.01
    done
}
"$bin/klipvane" --log-stalls 20 2> "$work/editor.log" > /dev/null &
editor=$!
wait_for "$work/editor.log" "startup: " || { echo "run_intake: the editor did not start" >&2; exit 1; }

# Seconds since midnight, from $EPOCHREALTIME and from a log line's hh:mm:ss.uuuuuu.
day_seconds() { awk -v t="${1/,/.}" 'BEGIN { printf "%.6f\n", t - int(t / 86400) * 86400 }'; }
log_seconds() { grep -F -- "$2" "$1" | head -1 | grep -o '[0-9][0-9]:[0-9][0-9]:[0-9][0-9]\.[0-9]*' | head -1 |
                awk -F: '{ printf "%.6f\n", $1 * 3600 + $2 * 60 + $3 }'; }

handed=$(day_seconds "$EPOCHREALTIME")
"$bin/klipvane" "$work/many" 2>/dev/null
: > "$work/starts"
for i in $(seq 1 "$launches"); do
    echo "$(day_seconds "$EPOCHREALTIME") $work/extra/late$i.mp4" >> "$work/starts"
    "$bin/klipvane" "$work/extra/late$i.mp4" 2>/dev/null || echo "run_intake: launch $i exited with $?" >&2
    sleep 0.1
done
wait_for "$work/editor.log" "media batch reported" || { echo "run_intake: the batch was never reported" >&2; exit 1; }
reported=$(log_seconds "$work/editor.log" "media batch reported")
stop_editor

: > "$work/delivered"
while read -r start file; do
    awk -v s="$start" -v r="$reported" 'BEGIN { exit !(s < r) }' || continue
    at=$(log_seconds "$work/editor.log" "command: AddFiles $file")
    [ -n "$at" ] || { echo "run_intake: $file never reached the editor" >&2; exit 1; }
    awk -v a="$at" -v s="$start" 'BEGIN { printf "%.1f\n", (a - s) * 1000 }' >> "$work/delivered"
done < "$work/starts"
during=$(wc -l < "$work/delivered")
[ "$during" -gt 0 ] || { echo "run_intake: the batch ended before the first launch; use more files" >&2; exit 1; }
median=$(sort -g "$work/delivered" | awk '{ v[NR] = $1 } END { print (NR % 2) ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }')
worst=$(sort -g "$work/delivered" | tail -1)
stalls=$(awk -v h="$handed" -v r="$reported" '/ stall: / {
             if (match($0, /[0-9][0-9]:[0-9][0-9]:[0-9][0-9]\.[0-9]+/)) { split(substr($0, RSTART, RLENGTH), t, ":");
                 s = t[1] * 3600 + t[2] * 60 + t[3]; if (s >= h && s <= r) { sub(/.* stall: /, ""); print $1 } } }' "$work/editor.log")
longest=$(printf '%s\n' $stalls 0 | sort -g | tail -1)
over=$(printf '%s\n' $stalls | awk '$1 > 50' | wc -l)
echo "batch of $count files: $(awk -v h="$handed" -v r="$reported" 'BEGIN { printf "%.0f", (r - h) * 1000 }') ms from hand-off to report"
echo "second launches during the batch: $during; delivered to the bin median_ms=$median worst_ms=$worst (goal: median <= 100)"
echo "GUI thread: longest stall ${longest} ms, $over over 50 ms (stalls under 20 ms are not logged; goal: none over 50)"
