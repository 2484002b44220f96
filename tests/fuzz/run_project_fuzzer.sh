#!/bin/sh
# Builds the project loader's fuzz target with clang (libFuzzer, address and undefined-behaviour
# sanitizers) and runs it for a bounded time. The loader's sources are compiled into the target
# (instrumented); the platform core it calls is the built library.
#
#   tests/fuzz/run_project_fuzzer.sh BUILD_DIR [SECONDS]     (default 15 s)
#   tests/fuzz/run_project_fuzzer.sh BUILD_DIR 0 INPUT...    (replay inputs, e.g. a crash)
set -eu
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/../.." && pwd)
build=${1:?usage: run_project_fuzzer.sh BUILD_DIR [SECONDS [INPUT...]]}
# Absolute: the programs find the built library through an rpath made from it.
build=$(cd "$build" && pwd)
seconds=${2:-15}
[ $# -gt 2 ] && shift 2 || set --
out=$build/fuzz/project
cxx=${FUZZ_CXX:-clang++}
qtbin=$(pkg-config --variable=host_bins Qt5Core)
fail() { echo "run_project_fuzzer: $*" >&2; exit 1; }
model=$root/platform/model
sources="$model/Effect/Effect.cpp $model/Timeline/TimelineModel.cpp $model/Serialize/Serialize.cpp
  $model/Serialize/JsonReader.cpp $model/Project/ProjectFile.cpp $model/Project/Relink.cpp
  $model/Translator/Translator.cpp"
stale() { [ ! -x "$1" ] || [ -n "$(find "$here/fuzz_project.cpp" $sources "$model/Timeline" "$model/Effect" "$0" -newer "$1")" ]; }

mkdir -p "$out/seeds" "$out/corpus" "$out/crashes" "$out/gen"
: > "$out/build.log"
[ -f "$build/lib/libKvPlatformCore.so" ] || fail "build KvPlatformCore first ($build/lib/libKvPlatformCore.so)"
"$qtbin/moc" -I"$model" "$model/Timeline/TimelineModel.h" -o "$out/gen/moc_TimelineModel.cpp"
"$qtbin/rcc" -name effects "$model/Effect/effects.qrc" -o "$out/gen/qrc_effects.cpp"
flags="-std=c++17 -g -O1 -fPIC -Wall -Wextra -I$model -I$root/platform/core $(pkg-config --cflags Qt5Widgets)
  -fno-sanitize-recover=undefined -fsanitize=address,undefined"
libs="-L$build/lib -Wl,-rpath,$build/lib -lKvPlatformCore $(pkg-config --libs Qt5Widgets libglog)"
if stale "$out/fuzz_project"; then
    # The loader is compiled once, instrumented, and linked into both programs: the target
    # and the seed writer.
    objects=""
    for source in $sources "$out/gen/moc_TimelineModel.cpp" "$out/gen/qrc_effects.cpp"; do
        object=$out/gen/$(basename "$source" .cpp).o
        # shellcheck disable=SC2086
        "$cxx" $flags -fsanitize=fuzzer-no-link -c "$source" -o "$object" 2>> "$out/build.log" || {
            cat "$out/build.log" >&2
            fail "'$cxx' cannot build the loader for fuzzing (Debian: clang and libclang-rt-dev; scripts/setup.sh installs both)."
        }
        objects="$objects $object"
    done
    # shellcheck disable=SC2086
    "$cxx" $flags -fsanitize=fuzzer "$here/fuzz_project.cpp" $objects $libs -o "$out/fuzz_project" 2>> "$out/build.log" || {
        cat "$out/build.log" >&2
        fail "'$cxx' cannot link the libFuzzer target"
    }
    # shellcheck disable=SC2086
    "$cxx" $flags -fsanitize=fuzzer-no-link -DKV_PROJECT_SEEDS "$here/fuzz_project.cpp" $objects $libs \
        -o "$out/project_seeds" || fail "building the seed writer failed"
fi
. "$here/fuzz_run.sh"
seed_or_replay "$out/fuzz_project" "$out/project_seeds" "$out/seeds" "$seconds" BUILD_DIR "$@"
replay_dir=$build
# Qt keeps a few process-wide allocations until exit; they are not the loader's leaks.
export LSAN_OPTIONS=suppressions=$here/project.supp QT_QPA_PLATFORM=offscreen
run_target "$out/fuzz_project" "$seconds" "$out/corpus" "$out/seeds" "$out/crashes" "$out/last_run.log" \
    -max_len=65536 -dict="$here/project.dict"
