#!/usr/bin/env bash
# Measures the window side by side with the command line in one run, under Xvfb:
#  - the start to the first painted frame, without an image and with the bundled sample;
#  - opening an image of 1,010,100 entries (100 folders of 100 folders of 100 files) to the
#    first paint of its tree, against `ovrin-cli list` on the same image, time and peak memory;
#  - the file list on a folder of 100,000 files (ovrin-view-bench).
# It builds nothing: it takes the programs in build/bin and makes a missing image into
# bench/cache. The window quits after that paint through OVRIN_QUIT_AFTER_FIRST_PAINT.
# Usage: bench/window-bench.sh [path/to/build/bin]
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
bin=$(realpath "${1:-$here/../build/bin}")
if [ -z "${DISPLAY:-}" ]; then
    exec xvfb-run -a -s "-screen 0 1280x1024x24" "$0" "$bin"
fi

cache="$here/cache"
big="$cache/entries-1010100.iso"
sample="$bin/sample.iso"
runs=${RUNS:-10}
big_runs=${BIG_RUNS:-5}
start_target=0.3
time_ratio_target=1.5
memory_ratio_target=1.3

mkdir -p "$cache"
[ -f "$big" ] || "$here/make-entries-image.sh" "$big"

# The window keeps its placement in settings of its own here, never the user's.
settings=$(mktemp -d)
csv=$(mktemp)
trap 'rm -rf "$settings" "$csv"' EXIT
export BRINDLEWAY_USER_REGISTRY="$settings/user.db"
export BRINDLEWAY_MACHINE_REGISTRY="$settings/machine.db"
export OVRIN_QUIT_AFTER_FIRST_PAINT=1

# Median seconds of each named command, in the order given, one a line.
medians() {
    local n=$1
    shift
    hyperfine -N --warmup 2 --runs "$n" --export-csv "$csv" --style none "$@" >/dev/null 2>&1
    awk -F, 'NR > 1 {printf "%.3f\n", $4}' "$csv"
}

peak_kib() {
    local best=""
    for _ in 1 2 3; do
        local kib
        kib=$(/usr/bin/time -f %M "$@" 2>&1 >/dev/null | tail -n 1)
        if [ -z "$best" ] || [ "$kib" -lt "$best" ]; then best=$kib; fi
    done
    echo "$best"
}

verdict() {
    awk -v v="$1" -v t="$2" 'BEGIN {print (v <= t) ? "met" : "MISSED"}'
}

row() {
    printf '%-40s %14s %14s %8s\n' "$@"
}

mapfile -t start < <(medians "$runs" -n empty "$bin/ovrin" -n sample "$bin/ovrin $sample")
mapfile -t open < <(medians "$big_runs" -n cli "$bin/ovrin-cli list $big" -n window "$bin/ovrin $big")
cli_kib=$(peak_kib "$bin/ovrin-cli" list "$big")
window_kib=$(peak_kib "$bin/ovrin" "$big")
entries=$("$bin/ovrin-cli" list "$big" | wc -l)
time_ratio=$(awk -v a="${open[1]}" -v b="${open[0]}" 'BEGIN {printf "%.2f", a / b}')
memory_ratio=$(awk -v a="$window_kib" -v b="$cli_kib" 'BEGIN {printf "%.2f", a / b}')
mib() { awk -v k="$1" 'BEGIN {printf "%.1f MiB", k / 1024}'; }

echo "Window under Xvfb, page cache warm; medians of $runs runs (start) and $big_runs (open)"
row "measure" "figure" "target" "verdict"
row "start to first paint, no image" "${start[0]} s" "< $start_target s" "$(verdict "${start[0]}" "$start_target")"
row "start to first paint, sample.iso" "${start[1]} s" "< $start_target s" "$(verdict "${start[1]}" "$start_target")"
echo "Image: $big ($(du -h "$big" | cut -f1), $entries entries)"
row "ovrin-cli list" "${open[0]} s" "" ""
row "window open to first paint of the tree" "${open[1]} s" "" ""
row "  time, window / cli" "$time_ratio" "<= $time_ratio_target" "$(verdict "$time_ratio" "$time_ratio_target")"
row "ovrin-cli list, peak memory" "$(mib "$cli_kib")" "" ""
row "window, peak memory" "$(mib "$window_kib")" "" ""
row "  memory, window / cli" "$memory_ratio" "<= $memory_ratio_target" "$(verdict "$memory_ratio" "$memory_ratio_target")"
"$bin/ovrin-view-bench"
