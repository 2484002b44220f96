#!/bin/sh
# Missing-files search benchmark. Usage: bench/run_relink.sh [BUILD_DIR] [FILES FOLDERS]...
# (default: build, then 300000 30000 and 1000000 100000)
#
# For each tree size: generates a tree (bench_relink tree: three folder levels, empty files,
# FILES/FOLDERS per leaf folder), warms it, and times with hyperfine, side by side in one run:
#   kvrelink ROOT --names-from LIST       our search, 50 names (49 present, 1 absent)
#   bfs ROOT ( -name N1 -o ... -name N50 ) the same 50 names
#   find ROOT ( -name N1 -o ... )          GNU find, the same
# The absent name makes every tool walk the whole tree. Prints wall-clock and CPU (user+sys)
# means and the ratios kvrelink/bfs and kvrelink/find. Goals: <= 1 against bfs, <= 0.5 against
# find. Then the walk alone (one absent name per tool; RELINK_WALK_ONLY=0 skips it), and the missing-files dialog on the same tree: the longest GUI stall during a full
# search and the time from Cancel Search to idle (bench_relink dialog).
set -eu
here=$(cd "$(dirname "$0")" && pwd)
build=${1:-$here/../build}
[ $# -gt 0 ] && shift
bin=$build/bin
for tool in bfs hyperfine; do
    if ! command -v $tool >/dev/null; then
        SUDO=""; [ "$(id -u)" -eq 0 ] || SUDO=sudo
        $SUDO apt-get install -y -qq --no-install-recommends $tool >/dev/null
    fi
done
for tool in "$bin/kvrelink" "$bin/bench_relink" find; do
    command -v "$tool" >/dev/null || { echo "run_relink: $tool not found (build first)" >&2; exit 1; }
done
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT INT TERM
export KLIPVANE_CONFIG_DIR="$work/config" KLIPVANE_LOG_DIR="$work/log" XDG_RUNTIME_DIR="$work/run" QT_QPA_PLATFORM=offscreen
mkdir -p "$KLIPVANE_CONFIG_DIR" "$KLIPVANE_LOG_DIR" "$XDG_RUNTIME_DIR"
chmod 700 "$XDG_RUNTIME_DIR"

[ $# -ge 2 ] || set -- 300000 30000 1000000 100000
banner
while [ $# -ge 2 ]; do
    files=$1 folders=$2
    shift 2
    tree="$work/tree$files"
    "$bin/bench_relink" tree "$tree" "$files" "$folders" > "$work/names$files.txt"
    expr=""
    for path in $(cat "$work/names$files.txt"); do
        name=$(basename "$path")
        expr="${expr:+$expr -o }-name $name"
    done
    find "$tree" > /dev/null # warm the folder cache
    runs=$([ "$files" -gt 300000 ] && echo 3 || echo 5)
    echo "## $files files in $folders folders, 50 names, $runs runs"
    # -i: kvrelink exits 1 while a name is still missing, which the absent name always is
    hyperfine -N -i --warmup 1 --runs "$runs" --export-csv "$work/r$files.csv" \
        -n kvrelink "$bin/kvrelink $tree --names-from $work/names$files.txt" \
        -n bfs "bfs $tree ( $expr )" \
        -n find "find $tree ( $expr )" > "$work/hyperfine$files.log"
    # command,mean,stddev,median,user,system,min,max
    awk -F, 'NR > 1 { wall[$1] = $2; cpu[$1] = $5 + $6; min[$1] = $7 }
        END {
            printf "| tool | wall mean s | wall min s | user+sys s |\n|---|---|---|---|\n"
            split("kvrelink bfs find", order, " ")
            for (i = 1; i <= 3; i++) { t = order[i]; printf "| %s | %.3f | %.3f | %.3f |\n", t, wall[t], min[t], cpu[t] }
            printf "\nkvrelink/bfs: wall %.3f, min %.3f, cpu %.3f (goal <= 1)\n", wall["kvrelink"] / wall["bfs"], min["kvrelink"] / min["bfs"], cpu["kvrelink"] / cpu["bfs"]
            printf "kvrelink/find: wall %.3f, min %.3f, cpu %.3f (goal <= 0.5)\n", wall["kvrelink"] / wall["find"], min["kvrelink"] / min["find"], cpu["kvrelink"] / cpu["find"]
        }' "$work/r$files.csv"
    if [ "${RELINK_WALK_ONLY:-1}" = 1 ]; then
        # The walk alone: one absent name each, so no tool pays for matching many names.
        echo /old/media/absent_clip.mp4 > "$work/absent.txt"
        hyperfine -N -i --warmup 1 --runs "$runs" --export-csv "$work/w$files.csv" \
            -n kvrelink "$bin/kvrelink $tree --names-from $work/absent.txt" \
            -n bfs "bfs $tree -name absent_clip.mp4" \
            -n find "find $tree -name absent_clip.mp4" > "$work/walk$files.log"
        echo
        echo "walk only (one absent name):"
        awk -F, 'NR > 1 { wall[$1] = $2; cpu[$1] = $5 + $6 }
            END { printf "kvrelink %.3f s (cpu %.3f), bfs %.3f s (cpu %.3f), find %.3f s (cpu %.3f); kvrelink/bfs %.3f, kvrelink/find %.3f\n",
                  wall["kvrelink"], cpu["kvrelink"], wall["bfs"], cpu["bfs"], wall["find"], cpu["find"],
                  wall["kvrelink"] / wall["bfs"], wall["kvrelink"] / wall["find"] }' "$work/w$files.csv"
    fi
    echo
    echo "dialog: $("$bin/bench_relink" dialog "$tree" "$work/names$files.txt" 2>/dev/null | tr '\n' ';')"
    echo
    rm -rf "$tree"
done
