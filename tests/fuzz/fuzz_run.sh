# Sourced by the run_*_fuzzer.sh scripts: runs a built libFuzzer target for a bounded time
# and reports its result the same way for every target.
#
#   run_target BINARY SECONDS CORPUS SEEDS CRASHES LOG [LIBFUZZER OPTIONS...]
#
# On failure it prints the log's end, how to replay each new crashing input ($0 $out 0 FILE,
# with the caller's $out, or its $replay_dir where the script takes another folder) and exits 1.
run_target() {
    binary=$1 seconds=$2 corpus=$3 seeds=$4 crashes=$5 log=$6
    shift 6
    : > "$log.stamp"
    status=0
    ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
    "$binary" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -artifact_prefix="$crashes/" \
        -print_final_stats=1 "$@" "$corpus" "$seeds" > "$log" 2>&1 || status=$?
    grep -E '^(stat::number_of_executed_units|#[0-9]+ +DONE)' "$log" || true
    if [ "$status" -ne 0 ]; then
        tail -n 60 "$log" >&2
        find "$crashes" -type f -newer "$log.stamp" -exec echo "  replay: $0 ${replay_dir:-$out} 0 {}" \; >&2
        fail "the fuzz target failed (status $status); full log: $log"
    fi
    echo "$(basename "$0" .sh): no failure in ${seconds}s; corpus: $(ls "$corpus" | wc -l) inputs"
}

# Writes the seed corpus with SEEDER into SEEDS; with SECONDS 0 it replays the inputs that
# follow instead of fuzzing (WHAT names the script's first argument in the message).
#
#   seed_or_replay TARGET SEEDER SEEDS SECONDS WHAT [INPUT...]
seed_or_replay() {
    target=$1 seeder=$2 seeds=$3 seconds=$4 what=$5
    shift 5
    "$seeder" "$seeds" || fail "writing the seed corpus failed"
    if [ "$seconds" = 0 ]; then
        [ $# -gt 0 ] || fail "nothing to replay: give the inputs after $what 0"
        exec "$target" "$@"
    fi
}
