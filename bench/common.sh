# Sourced by the benchmark scripts once `bin` is set: a private work folder ($work, removed
# on exit) holding the editor's per-user folders, and the small helpers every script uses.

# require TOOL...: stops the script when one is missing.
require() {
    for tool in "$@"; do
        command -v "$tool" >/dev/null || { echo "$(basename "$0"): $tool not found (build first; ffmpeg installed?)" >&2; exit 1; }
    done
}

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT INT TERM
export KLIPVANE_CONFIG_DIR="$work/config" KLIPVANE_LOG_DIR="$work/log" XDG_RUNTIME_DIR="$work/run"
mkdir -p "$KLIPVANE_CONFIG_DIR" "$KLIPVANE_LOG_DIR" "$XDG_RUNTIME_DIR"
chmod 700 "$XDG_RUNTIME_DIR"

now_ms() { date +%s%3N; }
# The smallest number of a file of numbers: the machine is shared, the least disturbed run counts.
least() { sort -g "$1" | head -1; }
ratio() { awk "BEGIN { printf \"%.${3:-3}f\", $1 / $2 }"; }
# The first line of a run's output: when, on how many cores, under what load.
banner() { echo "# $(date -u), $(nproc) cores, load $(cut -d' ' -f1-3 /proc/loadavg)"; }
