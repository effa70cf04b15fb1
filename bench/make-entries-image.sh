#!/usr/bin/env bash
# Makes an ISO 9660 image with Rock Ridge and Joliet of 1,010,100 entries: 100 folders of 100
# folders of 100 files. Every file is the one empty file grafted at many paths, so no tree of a
# million files is ever written to disk and the image holds directory records alone.
# Usage: bench/make-entries-image.sh OUT.iso
set -euo pipefail

out=$1
echo "Making $out (once; kept in bench/cache) ..." >&2
empty=$(mktemp)
list=$(mktemp)
trap 'rm -f "$empty" "$list"' EXIT
awk -v src="$empty" 'BEGIN {
    for (d = 0; d < 100; d++) for (s = 0; s < 100; s++) for (f = 0; f < 100; f++)
        printf "folder-%02d/sub-%02d/file-%02d.txt=%s\n", d, s, f, src
}' >"$list"
xorriso -as mkisofs -quiet -R -J -graft-points -path-list "$list" -o "$out.tmp" 2>/dev/null
mv "$out.tmp" "$out"
