#!/bin/sh
# Installs the Debian packages that building, testing and benchmarking need,
# only those that are missing. Runs apt-get as root, or through sudo.
set -eu

PACKAGES="
cmake ninja-build ccache g++ clang libclang-rt-14-dev
qt6-base-dev libsqlite3-dev zlib1g-dev
libgtest-dev googletest
xorriso genisoimage libarchive-tools p7zip-full dvdauthor ffmpeg udftools
hyperfine time util-linux
"

missing=""
for p in $PACKAGES; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
        missing="$missing $p"
    fi
done
[ -z "$missing" ] && exit 0

echo "Installing:$missing"
if [ "$(id -u)" -eq 0 ]; then
    SUDO=""
else
    SUDO="sudo"
fi
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
# shellcheck disable=SC2086
$SUDO apt-get install -y -qq --no-install-recommends $missing
