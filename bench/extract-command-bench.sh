#!/usr/bin/env bash
# Extraction through the window's command (ovrin-extract-command-bench, the file list driven
# with every root row selected) against `ovrin-cli extract` on the same images that
# extract-bench.sh makes, each run into a freshly made ext4 volume so that no run inherits the
# last one's freed inodes. Every timed command ends with `sync`; the image is read into the page
# cache before each run. Also: the same extraction over 1,000 existing targets answered
# "Replace All" once, and how soon a stop is answered at several points of the large image.
# Usage: bench/extract-command-bench.sh [BINDIR] [IMAGEDIR]   (root; RUNS, default 3)
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
bin=$(realpath "${1:-$here/../build/bin}")
images=$(realpath "${2:-$here/cache}")
runs=${RUNS:-3}
work=$(mktemp -d)
volume="$work/volume"
trap 'mountpoint -q "$volume" && umount "$volume"; rm -rf "$work"' EXIT

fresh_volume() {
    local image=$1
    mountpoint -q "$volume" && umount "$volume"
    rm -f "$work/volume.img"
    truncate -s 4G "$work/volume.img"
    mkfs.ext4 -q -F "$work/volume.img"
    mkdir -p "$volume"
    mount -o loop "$work/volume.img" "$volume"
    mkdir "$volume/out"
    sync
    cat "$image" >/dev/null
}

# Seconds that a command and the sync after it take.
timed() {
    local start end
    start=$(date +%s.%N)
    "$@" >/dev/null
    sync
    end=$(date +%s.%N)
    echo "$end - $start" | bc -l
}

median() {
    printf '%s\n' "$@" | sort -g | awk '{a[NR]=$1} END {print (NR % 2) ? a[(NR + 1) / 2] : (a[NR / 2] + a[NR / 2 + 1]) / 2}'
}

for set in large small; do
    image="$images/extract-$set.iso"
    [ -f "$image" ] || { echo "missing $image (run bench/extract-bench.sh once)" >&2; exit 1; }
    cli=() window=()
    for _ in $(seq "$runs"); do
        fresh_volume "$image"
        cli+=("$(timed "$bin/ovrin-cli" extract "$image" -C "$volume/out")")
        fresh_volume "$image"
        window+=("$(timed "$bin/ovrin-extract-command-bench" "$image" "$volume/out")")
    done
    c=$(median "${cli[@]}")
    w=$(median "${window[@]}")
    if [ "$set" = large ]; then large_window=$w; fi
    printf '%s: ovrin-cli extract %.2f s, window command %.2f s, ratio %.3f  (runs: %s | %s)\n' \
        "$set" "$c" "$w" "$(echo "$w / $c" | bc -l)" "${cli[*]}" "${window[*]}"
done

image="$images/extract-small.iso"
over=() plain=()
for _ in $(seq "$runs"); do
    fresh_volume "$image"
    plain+=("$(timed "$bin/ovrin-extract-command-bench" "$image" "$volume/out")")
    "$bin/ovrin-extract-command-bench" "$image" "$volume/out" >/dev/null
    sync
    cat "$image" >/dev/null
    over+=("$(timed "$bin/ovrin-extract-command-bench" "$image" "$volume/out")")
done
p=$(median "${plain[@]}")
o=$(median "${over[@]}")
printf 'small over 1,000 existing folders, Replace All once: %.2f s against %.2f s, ratio %.3f\n' \
    "$o" "$p" "$(echo "$o / $p" | bc -l)"

# The stop points spread over the large extraction as this machine runs it, densest towards
# its end, where the last file's data is still on its way to the disk.
image="$images/extract-large.iso"
for fraction in 0.05 0.2 0.4 0.55 0.65 0.7 0.75 0.8 0.85 0.9; do
    ms=$(printf '%.0f' "$(echo "$large_window * $fraction * 1000" | bc -l)")
    fresh_volume "$image"
    printf 'large, stop at %5d ms: ' "$ms"
    "$bin/ovrin-extract-command-bench" "$image" "$volume/out" --stop-after "$ms" 2>/dev/null |
        tail -n 1
    printf '    files left: %s\n' "$(find "$volume/out" -type f | wc -l)"
done
