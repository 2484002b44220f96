#!/bin/sh
# Project and timeline benchmarks. Usage: bench/run_project.sh [BUILD_DIR]   (default: build)
#  (a) saving and loading a project of 10,000 clips over 2,000 media files, against
#      QJsonDocument alone writing and parsing the same bytes (the floor), in one run: each
#      side once per round, interleaved, best of 15 rounds; neither side's teardown is timed.
#      Goal: within 2.0x of the floor; 1,000 -> 10,000 clips grows no more than 12x.
#  (b) placing 10,000 clips one by one, selecting all and removing them, against 1,000:
#      linear growth is 10x for 10x the clips.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
build=${1:-$here/../build}
bench=$build/bin/bench_project
[ -x "$bench" ] || { echo "run_project: $bench not found (build first)" >&2; exit 1; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT INT TERM
export KLIPVANE_CONFIG_DIR="$work/config" KLIPVANE_LOG_DIR="$work/log"
mkdir -p "$KLIPVANE_CONFIG_DIR" "$KLIPVANE_LOG_DIR"
value() { echo "$1" | tr ' ' '\n' | sed -n "s/^$2=//p"; }
ratio() { awk "BEGIN { printf \"%.2f\", $1 / $2 }"; }

small=$("$bench" io 1000 200 "$work/small")
large=$("$bench" io 10000 2000 "$work/large")
echo "$small"
echo "$large"
echo "save 10,000 clips: $(value "$large" save_ratio)x the floor (goal <= 2.0)"
echo "load 10,000 clips: $(value "$large" load_ratio)x the floor (goal <= 2.0)"
echo "save 1,000 -> 10,000: $(ratio "$(value "$large" save_ms)" "$(value "$small" save_ms)")x (goal <= 12)"
echo "load 1,000 -> 10,000: $(ratio "$(value "$large" load_ms)" "$(value "$small" load_ms)")x (goal <= 12)"

e1=$("$bench" edit 1000)
e10=$("$bench" edit 10000)
echo "$e1"
echo "$e10"
for phase in insert select remove; do
    echo "$phase 1,000 -> 10,000: $(ratio "$(value "$e10" ${phase}_ms)" "$(value "$e1" ${phase}_ms)")x (linear: 10)"
done
