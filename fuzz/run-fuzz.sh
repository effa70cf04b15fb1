#!/bin/sh
# Runs the engine fuzzer for SECONDS over a corpus in WORK, seeded with small images that
# xorriso, genisoimage and mkudffs make on the first run, and copies of them in the other sector
# layouts, all in the fuzzer's compact form (fuzz/SparseImage.h). Prints the number of inputs
# run; fails when the fuzzer found a crash, a hang or an out-of-memory (the input is then in
# WORK/artifacts).
#   run-fuzz.sh FUZZER SECONDS WORK SECTOR_IMAGE_TOOL
set -eu
fuzzer=$1
seconds=$2
work=$3
convert=$4

seeds="$work/seeds"
# Seeds made before they were compact are made again.
if [ ! -f "$seeds/.made-compact" ]; then
    rm -rf "$seeds" "$work/src"
    mkdir -p "$seeds" "$work/src/a/b/c/d/e/f/g/h/i" "$work/src/empty"
    printf 'hello\n' > "$work/src/a/hello.txt"
    printf 'deep\n' > "$work/src/a/b/c/d/e/f/g/h/i/deep.txt"
    printf 'x%.0s' $(seq 1 3000) > "$work/src/Long name with spaces and more than thirty-one.txt"
    genisoimage -quiet -no-pad -input-charset utf-8 -R -J -o "$seeds/rr-joliet.iso" "$work/src"
    genisoimage -quiet -no-pad -D -o "$seeds/plain.iso" "$work/src"
    xorriso -no_rc -report_about SORRY -outdev "$seeds/relocated.iso" -padding 0 \
        -compliance deep_paths_off -rockridge on -map "$work/src" / -commit
    xorriso -no_rc -report_about SORRY -outdev "$seeds/zisofs.iso" -padding 0 -rockridge on \
        -map "$work/src" / -set_filter_r --zisofs / -- -commit
    genisoimage -quiet -no-pad -iso-level 4 -D -o "$seeds/iso1999.iso" "$work/src"
    genisoimage -quiet -no-pad -input-charset utf-8 -udf -o "$seeds/udf-bridge.iso" "$work/src"
    dd if=/dev/zero of="$seeds/udf-201.img" bs=2048 count=300 status=none
    mkudffs --media-type=hd --udfrev=0x0201 -b 2048 "$seeds/udf-201.img" >/dev/null
    dd if=/dev/zero of="$seeds/udf-512.img" bs=512 count=600 status=none
    mkudffs --media-type=hd --udfrev=0x0201 -b 512 "$seeds/udf-512.img" >/dev/null
    # A volume's anchor is at block 256 whatever the block size: past a megabyte at 4096 bytes.
    for block in 1024 4096; do
        dd if=/dev/zero of="$seeds/udf-$block.img" bs="$block" count=300 status=none
        mkudffs --media-type=hd --udfrev=0x0201 -b "$block" "$seeds/udf-$block.img" >/dev/null
    done
    for kind in mode1 mode2form1 mode2 subchannel nero-daox nero-etnf; do
        "$convert" "$kind" "$seeds/rr-joliet.iso" "$seeds/rr-joliet-$kind.img"
    done
    for seed in "$seeds"/*; do
        "$convert" compact "$seed" "$seed"
    done
    touch "$seeds/.made-compact"
fi
mkdir -p "$work/corpus" "$work/artifacts"
# A corpus grown before inputs were compact holds raw images up to a megabyte, which the lower
# -max_len below would cut short.
if [ ! -f "$work/corpus.compact" ]; then
    find "$work/corpus" -type f -exec "$convert" compact {} {} \;
    touch "$work/corpus.compact"
fi

# -max_len: compact inputs hold only an image's non-zero blocks; the seeds are a few kilobytes.
# -malloc_limit_mb: no single allocation that two megabytes of image could justify is this big.
# -rss_limit_mb: the fuzzer holds its whole corpus and grows with it; an hour on a grown corpus
# of raw images ended at 978 MB, and the sanitizers' own bookkeeping grows over long runs, so
# the limit is kept well above that. The malloc limit above is what catches an input that asks
# for too much.
# -reload=0: one fuzzer alone owns the corpus, so rereading its folder every second (a twentieth
# of the time on a corpus of a few hundred inputs) finds nothing new.
status=0
"$fuzzer" "$work/corpus" "$seeds" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=4096 \
    -malloc_limit_mb=256 -max_len=131072 -reload=0 -print_final_stats=1 \
    -artifact_prefix="$work/artifacts/" >"$work/log" 2>&1 || status=$?
grep -E '^(==[0-9]+==ERROR|SUMMARY|artifact_prefix|Test unit written|stat::number_of_executed_units|Done)' \
    "$work/log" || true
if [ "$status" -ne 0 ]; then
    tail -n 60 "$work/log"
fi
exit "$status"
