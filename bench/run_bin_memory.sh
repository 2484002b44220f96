#!/bin/sh
# Memory of the host's media bin. Usage: bench/run_bin_memory.sh [BUILD_DIR] [FILES]  (build, 10000)
# The host opens FILES generated files (hard links of one small clip) from a folder and logs
# its resident memory once the batch is reported; the peer is kvprobe, which opens the same
# files through the same media model and handler without a window (its peak resident memory,
# /usr/bin/time). Per file: (memory with FILES files - memory with 1 file) / (FILES - 1).
# Goal: the host under 150 MB with 10,000 files.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
build=$(cd "${1:-$here/../build}" && pwd)
count=${2:-10000}
bin=$build/bin
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT INT TERM
export KLIPVANE_CONFIG_DIR="$work/config" KLIPVANE_LOG_DIR="$work/log" XDG_RUNTIME_DIR="$work/run" \
       KLIPVANE_IPC_DIR="$work/ipc" QT_QPA_PLATFORM=offscreen KLIPVANE_DISMISS_DIALOGS_MS=0
mkdir -p "$KLIPVANE_CONFIG_DIR" "$KLIPVANE_LOG_DIR" "$XDG_RUNTIME_DIR" "$KLIPVANE_IPC_DIR"
chmod 700 "$XDG_RUNTIME_DIR" "$KLIPVANE_IPC_DIR"
"$here/../tests/support/make_test_media.sh" "$work/src" >/dev/null
mkdir "$work/one" "$work/many"
ln "$work/src/h264_tiny.mp4" "$work/one/clip.mp4"
i=0
while [ $i -lt "$count" ]; do
    i=$((i + 1))
    ln "$work/src/h264_tiny.mp4" "$work/many/clip$i.mp4"
done

host_kb() { "$bin/klipvane" --quit-after-batches 1 "$1" 2>&1 | sed -n 's/.*memory: \([0-9]*\) kB resident.*/\1/p' | tail -1; }
probe_kb() { ( cd "$1" && /usr/bin/time -f %M "$bin/kvprobe" ./* 2>&1 >/dev/null | tail -1 ); }
host1=$(host_kb "$work/one"); hostn=$(host_kb "$work/many")
probe1=$(probe_kb "$work/one"); proben=$(probe_kb "$work/many")
per() { awk "BEGIN { printf \"%.1f\", ($2 - $1) / ($count - 1) }"; }
echo "host: 1 file ${host1} kB, $count files ${hostn} kB ($(awk "BEGIN { printf \"%.0f\", $hostn / 1024 }") MB), $(per "$host1" "$hostn") kB per file"
echo "kvprobe: 1 file ${probe1} kB, $count files ${proben} kB, $(per "$probe1" "$proben") kB per file"
echo "ratio per file host/kvprobe: $(awk "BEGIN { printf \"%.2f\", ($hostn - $host1) / ($proben - $probe1) }") (goal: host under 150 MB)"
