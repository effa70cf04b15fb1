#!/usr/bin/env bash
# Lists an image of 100,000 files in 1,000 folders with ovrin-cli and with peer tools that
# read the same image, several runs each, and prints medians, ratios and peak memory.
# Usage: bench/list-bench.sh [path/to/ovrin-cli] [iso|udf|million]
# "udf" lists the same tree as a UDF bridge image made by genisoimage -udf, against 7-Zip (the
# other peers read only its ISO 9660 side). "million" lists the image of 1,010,100 entries that
# window-bench.sh opens too (make-entries-image.sh), fewer runs each by default.
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
cli=$(realpath "${1:-$here/../build/bin/ovrin-cli}")
cache="$here/cache"
kind=${2:-iso}
case "$kind" in
iso) image="$cache/files-100k.iso" ;;
udf) image="$cache/files-100k-udf.iso" ;;
million) image="$cache/entries-1010100.iso" ;;
*) echo "unknown image kind: $kind" >&2; exit 2 ;;
esac
runs=${RUNS:-15}
if [ "$kind" = million ]; then
    runs=${RUNS:-5}
fi

make_image() {
    local tree="$cache/tree-100k"
    echo "Making $image (once; kept in bench/cache) ..." >&2
    rm -rf "$tree"
    mkdir -p "$tree"
    for d in $(seq -w 0 999); do
        mkdir "$tree/folder-$d"
        for f in $(seq -w 0 99); do
            printf 'file %s of folder %s\n' "$f" "$d" >"$tree/folder-$d/file-$f.txt"
        done
    done
    if [ "$kind" = udf ]; then
        genisoimage -quiet -udf -o "$image.tmp" "$tree" 2>/dev/null
    else
        xorriso -as mkisofs -quiet -R -J -o "$image.tmp" "$tree" 2>/dev/null
    fi
    mv "$image.tmp" "$image"
    rm -rf "$tree"
}

mkdir -p "$cache"
if [ "$kind" = million ]; then
    [ -f "$image" ] || "$here/make-entries-image.sh" "$image"
else
    [ -f "$image" ] || make_image
fi

declare -A commands=(
    [ovrin-cli list]="$cli list $image"
    [bsdtar -tf]="bsdtar -tf $image"
    [7z l]="7z l $image"
    [isoinfo -f]="isoinfo -f -i $image"
)
order=("ovrin-cli list" "bsdtar -tf" "7z l" "isoinfo -f")
if [ "$kind" = udf ]; then
    order=("ovrin-cli list" "7z l")
fi

csv=$(mktemp)
trap 'rm -f "$csv"' EXIT
args=()
for name in "${order[@]}"; do
    args+=(-n "$name" "${commands[$name]}")
done
hyperfine -N --warmup 3 --runs "$runs" --export-csv "$csv" --style none "${args[@]}" >/dev/null

peak_kib() {
    local best=""
    for _ in 1 2 3; do
        local kib
        kib=$(/usr/bin/time -f %M $1 2>&1 >/dev/null | tail -n 1)
        if [ -z "$best" ] || [ "$kib" -lt "$best" ]; then best=$kib; fi
    done
    echo "$best"
}

entries=$("$cli" list "$image" | wc -l)
echo "Image: $image ($(du -h "$image" | cut -f1), $entries entries), $runs runs each, page cache warm"
printf '%-16s %12s %14s %14s %12s\n' "command" "median (s)" "ovrin / peer" "peak memory" \
    "bytes/entry"
ovrin_median=$(awk -F, 'NR==2 {print $4}' "$csv")
awk -F, 'NR>1 {print $1 "," $4}' "$csv" | while IFS=, read -r name median; do
    ratio=$(awk -v a="$ovrin_median" -v b="$median" 'BEGIN {printf "%.2f", a / b}')
    mem=$(peak_kib "${commands[$name]}")
    printf '%-16s %12.4f %14s %11.1f MiB %12s\n' "$name" "$median" "$ratio" \
        "$(awk -v k="$mem" 'BEGIN {print k / 1024}')" \
        "$(awk -v k="$mem" -v n="$entries" 'BEGIN {printf "%.0f", k * 1024 / n}')"
done
