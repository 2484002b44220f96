#!/bin/bash
# Inter-process benchmarks. Usage: bench/run_ipc.sh [BUILD_DIR [RUNS]]   (default: build, 60)
#  (a) second launch: `klipvane FILE` while a primary klipvane runs, timed from process
#      start to exit, each hand-off checked in the primary's log ("command: AddFiles PATH");
#      side by side with the same hand-off on Debian's SingleApplication (bench_singleapp),
#      runs interleaved so both see the same machine load. Medians and ratio ours/peer;
#      the floor (bench_floor: a bare Qt Core + Network program sending the same call over
#      one local socket) is interleaved too, and the libraries each side loads are counted.
#  (b) calls per second over one connection, one at a time and pipelined, against a raw
#      local socket echo of the same bytes (bench_ipc rate);
#  (c) reading bursts of small frames out of one buffer: time per frame must stay flat.
# Every process of the run gets private folders under one mktemp directory (mode 0700);
# the two primaries are ended by their process ids.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
build=$(cd "${1:-$here/../build}" && pwd)
runs=${2:-60}
bin=$build/bin
for program in klipvane bench_singleapp bench_floor bench_ipc; do
    [ -x "$bin/$program" ] || { echo "run_ipc: $bin/$program is missing; build first (ninja -C $build)" >&2; exit 1; }
done

work=$(mktemp -d)
chmod 0700 "$work"
ours_pid=""
peer_pid=""
cleanup() {
    [ -n "$ours_pid" ] && kill "$ours_pid" 2>/dev/null && wait "$ours_pid" 2>/dev/null
    [ -n "$peer_pid" ] && kill "$peer_pid" 2>/dev/null && wait "$peer_pid" 2>/dev/null
    rm -rf "$work"
}
trap cleanup EXIT
trap 'exit 130' INT TERM

export QT_QPA_PLATFORM=offscreen
export KLIPVANE_CONFIG_DIR="$work/config" KLIPVANE_LOG_DIR="$work/log" XDG_RUNTIME_DIR="$work/run"
export KLIPVANE_IPC_DIR="$work/ipc"
# The peer library puts its socket and shared-memory key files in the temporary folder.
export TMPDIR="$work/tmp"
for d in "$KLIPVANE_CONFIG_DIR" "$KLIPVANE_LOG_DIR" "$XDG_RUNTIME_DIR" "$KLIPVANE_IPC_DIR" "$TMPDIR"; do
    mkdir -p "$d"
    chmod 0700 "$d"
done
unset KLIPVANE_IPC_PARENT

# Real media, so that the primary editor opens every file it is handed without a dialog.
"$here/../tests/support/make_test_media.sh" "$work/src" >/dev/null
mkdir "$work/files"
for i in $(seq -w 1 "$runs"); do
    cp "$work/src/h264_tiny.mp4" "$work/files/clip_$i.mp4"
    cp "$work/src/h264_tiny.mp4" "$work/files/floor_$i.mp4"
done

# Waits until FILE contains the fixed text, for at most 20 s.
wait_for() {
    local file=$1 text=$2 tries=0
    until grep -qF -- "$text" "$file" 2>/dev/null; do
        tries=$((tries + 1))
        [ $tries -le 2000 ] || return 1
        sleep 0.01
    done
}

# Elapsed milliseconds between two $EPOCHREALTIME readings (no process is started to
# read the clock, so the clock does not add to the times).
elapsed_ms() {
    local a=${1//[.,]/} b=${2//[.,]/}
    echo $(((10#$b - 10#$a) / 1000)).$(printf %03d $(((10#$b - 10#$a) % 1000)))
}

median() { sort -g "$1" | awk '{ v[NR] = $1 } END { if (NR % 2) print v[(NR + 1) / 2]; else printf "%.3f\n", (v[NR / 2] + v[NR / 2 + 1]) / 2 }'; }

"$bin/klipvane" 2> "$work/primary.log" > /dev/null &
ours_pid=$!
wait_for "$work/primary.log" "startup: " || { echo "run_ipc: the primary klipvane did not become ready" >&2; tail "$work/primary.log" >&2; exit 1; }
"$bin/bench_singleapp" > "$work/peer.log" 2>&1 &
peer_pid=$!
wait_for "$work/peer.log" "ready" || { echo "run_ipc: the peer primary did not become ready" >&2; exit 1; }

# CPU time (user + system) of each launch, from bash's `time`: it tells waiting from working.
TIMEFORMAT='%U %S'
: > "$work/ours.ms"
: > "$work/floor.ms"
: > "$work/floor.cpu"
# The editor's socket, for the floor program: the only socket in the private folder.
socket=$(find "$KLIPVANE_IPC_DIR" -maxdepth 1 -type s | head -1)
[ -n "$socket" ] || { echo "run_ipc: the primary klipvane has no socket in $KLIPVANE_IPC_DIR" >&2; exit 1; }
: > "$work/peer.ms"
: > "$work/ours.cpu"
: > "$work/peer.cpu"
failures=0
for file in "$work"/files/clip_*; do
    floor_file=${file/clip_/floor_}
    t0=$EPOCHREALTIME
    { time "$bin/klipvane" "$file" 2>> "$work/secondary.log" > /dev/null; } 2>> "$work/ours.cpu" ||
        { echo "run_ipc: klipvane $file exited with $?" >&2; failures=$((failures + 1)); }
    t1=$EPOCHREALTIME
    { time "$bin/bench_singleapp" "$file" 2>> "$work/peer_secondary.log"; } 2>> "$work/peer.cpu" ||
        { echo "run_ipc: bench_singleapp $file exited with $?" >&2; failures=$((failures + 1)); }
    t2=$EPOCHREALTIME
    { time "$bin/bench_floor" "$socket" "$floor_file"; } 2>> "$work/floor.cpu" ||
        { echo "run_ipc: bench_floor $floor_file exited with $?" >&2; failures=$((failures + 1)); }
    t3=$EPOCHREALTIME
    elapsed_ms "$t0" "$t1" >> "$work/ours.ms"
    elapsed_ms "$t1" "$t2" >> "$work/peer.ms"
    elapsed_ms "$t2" "$t3" >> "$work/floor.ms"
    wait_for "$work/primary.log" "command: AddFiles $floor_file" || { echo "run_ipc: klipvane never received $floor_file" >&2; failures=$((failures + 1)); }
    wait_for "$work/primary.log" "command: AddFiles $file" || { echo "run_ipc: klipvane never received $file" >&2; failures=$((failures + 1)); }
    wait_for "$work/peer.log" "received: $file" || { echo "run_ipc: the peer never received $file" >&2; failures=$((failures + 1)); }
done
delivered_ours=$(grep -c "command: AddFiles $work/files/clip_" "$work/primary.log" || true)
delivered_floor=$(grep -c "command: AddFiles $work/files/floor_" "$work/primary.log" || true)
delivered_peer=$(grep -c "received: $work/files/" "$work/peer.log" || true)

"$bin/bench_singleapp" --quit 2>/dev/null || true
wait "$peer_pid" 2>/dev/null || true
peer_pid=""
kill "$ours_pid" 2>/dev/null || true
wait "$ours_pid" 2>/dev/null || true
ours_pid=""

m_ours=$(median "$work/ours.ms")
m_peer=$(median "$work/peer.ms")
echo "(a) second launch, $runs runs each: klipvane median_ms=$m_ours (delivered $delivered_ours/$runs)" \
     "singleapplication median_ms=$m_peer (delivered $delivered_peer/$runs) ratio ours/peer=$(awk "BEGIN { printf \"%.3f\", $m_ours / $m_peer }")"
echo "    klipvane min/max_ms=$(sort -g "$work/ours.ms" | head -1)/$(sort -g "$work/ours.ms" | tail -1)" \
     "singleapplication min/max_ms=$(sort -g "$work/peer.ms" | head -1)/$(sort -g "$work/peer.ms" | tail -1)"
# A mean, not a median: the kernel counts CPU time in scheduler ticks, which only average out.
cpu_ms() { awk '{ sum += $1 + $2 } END { printf "%.1f\n", sum * 1000 / NR }' "$1"; }
c_ours=$(cpu_ms "$work/ours.cpu")
c_peer=$(cpu_ms "$work/peer.cpu")
echo "    mean cpu_ms (user+system): klipvane=$c_ours singleapplication=$c_peer floor=$(cpu_ms "$work/floor.cpu")" \
     "ratio ours/peer=$(awk "BEGIN { printf \"%.3f\", $c_ours / $c_peer }")"
m_floor=$(median "$work/floor.ms")
echo "    floor (bare Qt Core + Network, same call) median_ms=$m_floor (delivered $delivered_floor/$runs)" \
     "ratio ours/floor=$(awk "BEGIN { printf \"%.3f\", $m_ours / $m_floor }")"
# What the loader maps for a hand-off: the executable's whole dependency tree (the editor
# module is loaded only by a launch that becomes the editor).
loaded() { LD_TRACE_LOADED_OBJECTS=1 "$1" | grep -c '=>'; }
echo "    libraries loaded: klipvane=$(loaded "$bin/klipvane") floor=$(loaded "$bin/bench_floor")" \
     "singleapplication=$(loaded "$bin/bench_singleapp"); Qt in klipvane's:" \
     $(LD_TRACE_LOADED_OBJECTS=1 "$bin/klipvane" | grep -o 'libQt5[A-Za-z]*' | sort -u)

# A folder of its own: the primary editor, ended above, may have left its socket behind.
mkdir -m 0700 "$work/ipc_rate"
echo "(b) $(KLIPVANE_IPC_DIR="$work/ipc_rate" "$bin/bench_ipc" rate 2>&1 | sed '2,$s/^/    /')"

echo "(c) $("$bin/bench_ipc" burst 2>&1 | sed '2,$s/^/    /')"

if [ "$failures" -ne 0 ]; then
    echo "run_ipc: $failures failed hand-off(s)" >&2
    exit 1
fi
