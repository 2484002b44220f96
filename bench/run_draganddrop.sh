#!/bin/sh
# Drag-and-drop benchmark. Usage: bench/run_draganddrop.sh [BUILD_DIR]
#
# bench_draganddrop 1000 10000: real drag events carrying a text/uri-list of N files, routed
# by DragAndDropHandler, filtered by the MIME reader and handed by FileAdder to the media
# model; best of 9 runs per size. Prints the table, then the growth from 1,000 to 10,000
# (goal <= 12, linear is 10) and the longest GUI stall (goal <= 50 ms). The peer is Qt's own
# reading of the same list (QMimeData::urls() and QUrl::toLocalFile()), and the file
# system's part: FileUtil::extractFiles checking the same files alone, on this machine.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
build=${1:-$here/../build}
bin=$build/bin
. "$here/common.sh"
require "$bin/bench_draganddrop"
export QT_QPA_PLATFORM=offscreen
banner
"$bin/bench_draganddrop" 1000 10000 | tee "$work/table.md"
awk -F'|' '$2 + 0 == 1000 { small = $6; smallEnter = $3; smallQt = $8; smallFs = $10 }
    $2 + 0 == 10000 { big = $6; bigEnter = $3; stall = $7; bigQt = $8; bigFs = $10 }
    END { printf "\ngrowth 1,000 -> 10,000: in the model %.2fx, enter %.2fx (goal <= 12); peers: Qt reading %.2fx, file utility %.2fx\n",
          big / small, bigEnter / smallEnter, bigQt / smallQt, bigFs / smallFs
          printf "longest GUI stall at 10,000: %.1f ms (goal <= 50)\n", stall }' "$work/table.md"
