#!/bin/sh
# Adjustments of a selection. Usage: bench/run_adjustments.sh [BUILD_DIR]   (default: build)
# 1,000 and then 10,000 selected clips with 10 effects each: building and merging their
# rows, and changing one intensity on all of them, measured in the same run; the 1,000-clip
# figures are the peer. Goal: 1,000 -> 10,000 no more than 12x, and one undo step.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
build=${1:-$here/../build}
bin=$build/bin
bench=$bin/bench_clipadjustments
[ -x "$bench" ] || { echo "run_adjustments: $bench not found (build first)" >&2; exit 1; }
. "$here/common.sh"
value() { echo "$1" | tr ' ' '\n' | sed -n "s/^$2=//p"; }

small=$("$bench" 1000)
large=$("$bench" 10000)
echo "$small"
echo "$large"
echo "build and merge 1,000 -> 10,000: $(ratio "$(value "$large" build_ms)" "$(value "$small" build_ms)" 2)x (goal <= 12)"
echo "change one intensity 1,000 -> 10,000: $(ratio "$(value "$large" change_ms)" "$(value "$small" change_ms)" 2)x (goal <= 12)"
echo "undo steps of the change: $(value "$small" undo_steps) and $(value "$large" undo_steps) (goal: 1)"
