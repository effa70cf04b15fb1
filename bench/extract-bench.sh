#!/usr/bin/env bash
# Extracts two images with ovrin-cli and with peer tools that read the same image, several runs
# each, and prints medians, ratios, throughput and peak memory. `cp -a` of the plain folder that
# the image was made from stands for what the disk itself can do.
#   large: 4 files of 512 MiB of random bytes (2 GiB)
#   small: 100,000 files of 200 to 599 bytes in 1,000 folders
# Both images (xorriso -as mkisofs -R -J) and their plain folders are made once and kept in
# bench/cache; every tool writes into the same folder on the same disk: bench/cache/extract-out
# for the large set, and for the small one a fresh ext4 made in a file there (see mount_volume).
#
# Page cache: reads are warm, writes are counted to the disk. Before every timed run the
# target folder is removed and made again, `sync` writes everything out, and the image and
# the plain folder are read once to /dev/null, whichever tool comes next. Every timed command
# ends with `sync`, so data still waiting to be written back counts against the tool that wrote
# it. The caches are never dropped, so the disk's read speed is left out for every tool alike.
#
# Before timing, each tool extracts once under /usr/bin/time (its peak memory), and its output
# must hold as many folders, files and bytes as the plain folder; ovrin's is also compared with
# `diff -r`. An ovrin-cli without a working `extract` command is skipped with a warning.
#
# Usage: bench/extract-bench.sh [path/to/ovrin-cli] [large|small|both]
# RUNS sets the timed runs per tool for both sets; otherwise RUNS_LARGE (default 10, a run
# takes seconds) and RUNS_SMALL (default 5, a run takes up to a minute).
# SMALL_TARGET=volume|disk: where the small set is written (see mount_volume); on the disk,
# each preparation waits SETTLE_SECONDS (default 36, see prepare_command).
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
cli=$(realpath -m "${1:-$here/../build/bin/ovrin-cli}")
which_sets=${2:-both}
runs_large=${RUNS:-${RUNS_LARGE:-10}}
runs_small=${RUNS:-${RUNS_SMALL:-5}}
cache="$here/cache"
out="$cache/extract-out"
tools=(ovrin 7z bsdtar xorriso cp)
declare -A label=(
    [ovrin]="ovrin-cli extract" [7z]="7z x" [bsdtar]="bsdtar -xf"
    [xorriso]="xorriso -extract" [cp]="cp -a (folder)"
)
declare -A peak_kib=()
settle_seconds=0
volume="$cache/extract-volume"
small_target=disk
target_text=

die() {
    echo "extract-bench: $*" >&2
    exit 1
}

warn() {
    echo "extract-bench: warning: $*" >&2
}

# The free space the run needs: a target folder and slack, plus each large piece not yet made.
check_space() {
    local need=4 avail
    [ -f "$cache/extract-large.iso" ] || need=$((need + 2))
    [ -d "$cache/extract-large-src" ] || need=$((need + 2))
    avail=$(df --output=avail -B1G "$cache" | tail -n 1 | tr -d ' ')
    if [ "$avail" -lt "$need" ]; then
        die "$avail GiB free on $(df --output=target "$cache" | tail -n 1), $need GiB needed"
    fi
}

make_large_source() {
    local dir=$1
    for i in 1 2 3 4; do
        head -c 512M /dev/urandom >"$dir/part-$i.bin"
    done
}

# File sizes vary from 200 to 599 bytes; each file begins with its own name.
make_small_source() {
    local dir=$1 filler size
    filler=$(printf '%0600d' 0 | tr 0 x)
    for d in $(seq -w 0 999); do
        mkdir "$dir/folder-$d"
        for f in $(seq -w 0 99); do
            size=$(((10#$d * 100 + 10#$f) % 400 + 200))
            printf 'folder %s file %s %s\n' "$d" "$f" "${filler:0:size-20}" \
                >"$dir/folder-$d/file-$f.txt"
        done
    done
}

# Makes the plain folder and the image of a set once; half-made ones never keep their name.
make_set() {
    local set=$1 src="$cache/extract-$1-src" image="$cache/extract-$1.iso"
    if [ ! -d "$src" ]; then
        echo "Making $src (once; kept in bench/cache) ..." >&2
        rm -rf "$src.tmp"
        mkdir -p "$src.tmp"
        "make_${set}_source" "$src.tmp"
        mv "$src.tmp" "$src"
        rm -f "$image"
    fi
    if [ ! -f "$image" ]; then
        echo "Making $image ..." >&2
        xorriso -as mkisofs -quiet -R -J -o "$image.tmp" "$src" 2>/dev/null
        mv "$image.tmp" "$image"
    fi
}

# The command line that extracts the set with one tool into $out.
tool_command() {
    local tool=$1 image=$2 src=$3
    case "$tool" in
    ovrin) printf '%q extract %q -C %q' "$cli" "$image" "$out" ;;
    7z) printf '7z x -y -bd -bso0 -bsp0 -o%q %q' "$out" "$image" ;;
    bsdtar) printf 'bsdtar -xf %q -C %q' "$image" "$out" ;;
    xorriso) printf 'xorriso -report_about SORRY -osirrox on -indev %q -extract / %q' "$image" "$out" ;;
    cp) printf 'cp -a %q/. %q' "$src" "$out" ;;
    esac
}

# Empties the target folder, writes everything out and reads image and folder into the cache.
# ext4 without a journal (this machine's disk) does not hand out an inode again within 30 s
# (35 while its block is dirty) of freeing it, and scans past every such inode on each create:
# after 100,000 files were removed, the next tool's creates are slowed by an amount that depends
# only on timing. A small set written to the disk's own file system waits that out after
# removing (settle_seconds).
prepare_command() {
    local image=$1 src=$2
    printf 'rm -rf %q && mkdir %q && sync && sleep %d && cat %q >/dev/null && find %q -type f -exec cat {} + >/dev/null' \
        "$out" "$out" "$settle_seconds" "$image" "$src"
}

# Folders, files and bytes under a folder, as one line to compare.
tree_summary() {
    local dirs files_bytes
    dirs=$(find "$1" -type d | wc -l)
    files_bytes=$(find "$1" -type f -printf '%s\n' | awk '{n++; s += $1} END {printf "%d %.0f\n", n, s}')
    echo "$dirs $files_bytes"
}

# Extracts once under /usr/bin/time and checks the output. Returns 1 only when ovrin-cli has no
# working extract command; any other failure stops the run.
trial_run() {
    local tool=$1 image=$2 src=$3 expected=$4 log="$cache/extract-trial.log" got
    bash -c "$(prepare_command "$image" "$src")"
    if ! /usr/bin/time -f %M -o "$log.mem" bash -c "$(tool_command "$tool" "$image" "$src")" \
        >"$log" 2>&1; then
        if [ "$tool" = ovrin ]; then
            warn "skipping ovrin-cli: '$cli extract' failed: $(head -n 2 "$log" | tr '\n' ' ')"
            return 1
        fi
        cat "$log" >&2
        die "${label[$tool]} failed on $image"
    fi
    peak_kib[$tool]=$(tail -n 1 "$log.mem")
    got=$(tree_summary "$out")
    [ "$got" = "$expected" ] ||
        die "${label[$tool]} wrote $got (folders files bytes), the source holds $expected"
    if [ "$tool" = ovrin ]; then
        diff -r -q "$src" "$out" >&2 || die "ovrin-cli's output differs from $src"
    fi
}

# Times the tools with hyperfine; its progress goes to stderr, its figures to the CSV file.
time_tools() {
    local image=$1 src=$2 csv=$3 runs=$4 args=() tool
    shift 4
    for tool in "$@"; do
        args+=(-n "${label[$tool]}" "$(tool_command "$tool" "$image" "$src") && sync")
    done
    hyperfine --shell bash --runs "$runs" --style basic --export-csv "$csv" \
        --prepare "$(prepare_command "$image" "$src")" "${args[@]}" >&2
}

# A column of hyperfine's CSV (1 name, 4 median, 7 min, 8 max) for one command; empty if absent.
csv_field() {
    awk -F, -v n="$2" -v c="$3" '$1 == n {print $c}' "$1"
}

# Prints one set's table. The throughput is in MiB/s for the large set, in files/s for the
# small one; "ovrin / tool" is ovrin's median over the tool's, below 1 where ovrin is faster.
print_table() {
    local set=$1 image=$2 csv=$3 runs=$4 files=$5 bytes=$6 ovrin cp amount unit tool name median
    ovrin=$(csv_field "$csv" "${label[ovrin]}" 4)
    cp=$(csv_field "$csv" "${label[cp]}" 4)
    if [ "$set" = large ]; then
        amount=$(awk -v b="$bytes" 'BEGIN {print b / 1048576}') unit=MiB/s
    else
        amount=$files unit=files/s
    fi
    printf '\nSet %s: %s image, %d files, %.1f MiB; %d timed runs per tool; reads warm, writes synced\n' \
        "$set" "$(du -h "$image" | cut -f1)" "$files" "$(awk -v b="$bytes" 'BEGIN {print b / 1048576}')" "$runs"
    printf '%-18s %10s %9s %9s %13s %9s %12s\n' command "median (s)" "min (s)" "max (s)" \
        "ovrin / tool" "$unit" "peak memory"
    for tool in "${tools[@]}"; do
        name=${label[$tool]}
        median=$(csv_field "$csv" "$name" 4)
        [ -n "$median" ] || continue
        printf '%-18s %10.3f %9.3f %9.3f %13s %9.1f %8.1f MiB\n' "$name" "$median" \
            "$(csv_field "$csv" "$name" 7)" "$(csv_field "$csv" "$name" 8)" \
            "$(awk -v a="$ovrin" -v b="$median" 'BEGIN {if (a == "") print "-"; else printf "%.2f", a / b}')" \
            "$(awk -v a="$amount" -v t="$median" 'BEGIN {print a / t}')" \
            "$(awk -v k="${peak_kib[$tool]}" 'BEGIN {print k / 1024}')"
    done
    if [ -z "$ovrin" ]; then
        echo "ovrin-cli extract: not measured (see the warning above)"
        return
    fi
    awk -v o="$ovrin" -v c="$cp" -v a="$amount" -v u="$unit" 'BEGIN {
        printf "ovrin-cli extract: %.1f %s, %.0f %% of cp -a'\''s %.1f %s\n", a / o, u, 100 * c / o, a / c, u }'
}

run_set() {
    local set=$1 src="$cache/extract-$1-src" image="$cache/extract-$1.iso" expected csv
    local measured=() tool files bytes runs=$runs_small
    out="$cache/extract-out" settle_seconds=0 target_text="the disk's own file system"
    if [ "$set" = large ]; then
        runs=$runs_large
    elif [ "$small_target" = volume ]; then
        mount_volume
        out="$volume/out" target_text="a fresh ext4 in a file on the same disk"
    else
        settle_seconds=${SETTLE_SECONDS:-36}
    fi
    make_set "$set"
    expected=$(tree_summary "$src")
    for tool in "${tools[@]}"; do
        if trial_run "$tool" "$image" "$src" "$expected"; then
            measured+=("$tool")
        fi
    done
    csv=$(mktemp)
    time_tools "$image" "$src" "$csv" "$runs" "${measured[@]}"
    read -r _ files bytes <<<"$expected"
    print_table "$set" "$image" "$csv" "$runs" "$files" "$bytes"
    echo "written to $target_text"
    rm -f "$csv"
    rm -rf "$out"
    unmount_volume
}

# The small set's target by default. Creating a file on this machine's root file system costs
# about 320 us whatever the tool, ten times as much as on a freshly made ext4, and swings by a
# factor of four from run to run: the race between the tools' own per-file costs is lost in it.
# So, where this script may mount, the small set is written to a fresh ext4 (default options,
# with its journal) in a file on the same disk, as a user's disk would be.
mount_volume() {
    truncate -s 4G "$volume.img"
    mkfs.ext4 -q -F "$volume.img"
    mkdir -p "$volume"
    mount -o loop "$volume.img" "$volume"
}

unmount_volume() {
    if mountpoint -q "$volume"; then
        umount "$volume"
    fi
    rm -f "$volume.img"
    rmdir "$volume" 2>/dev/null || true
}

choose_small_target() {
    small_target=${SMALL_TARGET:-}
    if [ -z "$small_target" ]; then
        small_target=disk
        if [ "$(id -u)" = 0 ] && command -v mkfs.ext4 >/dev/null && [ -e /dev/loop-control ]; then
            small_target=volume
        fi
    fi
    case "$small_target" in
    volume | disk) ;;
    *) die "unknown SMALL_TARGET: $small_target (volume or disk)" ;;
    esac
}

# Other work on the two cores makes the figures noisy; say so rather than refuse.
check_load() {
    local load
    load=$(cut -d ' ' -f 1 /proc/loadavg)
    if awk -v l="$load" 'BEGIN {exit !(l > 0.5)}'; then
        warn "load average $load: other work shares the cores, the figures will be noisy"
    fi
}

main() {
    local sets tool set
    case "$which_sets" in
    large | small) sets=("$which_sets") ;;
    both) sets=(large small) ;;
    *) die "unknown set: $which_sets (large, small or both)" ;;
    esac
    for tool in hyperfine 7z bsdtar xorriso /usr/bin/time; do
        command -v "$tool" >/dev/null || die "$tool is missing; scripts/install-deps.sh installs it"
    done
    mkdir -p "$cache"
    check_space
    check_load
    choose_small_target
    trap 'rm -rf "$out" "$cache/extract-trial.log" "$cache/extract-trial.log.mem"; unmount_volume' EXIT
    for set in "${sets[@]}"; do
        run_set "$set"
    done
}

main
