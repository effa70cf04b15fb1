#!/bin/sh
# Installs the Debian packages that one kind of work needs, only those that are missing:
#   run    building and running the program
#   test   the above, and the tools the tests make and check images with, the fuzzer's clang,
#          and the desktop's validators and the Debian packaging tools that the install test uses
#   bench  the above, and the benchmarks' timer and peer tools
# Runs apt-get as root, or through sudo.
set -eu

tier=${1:-run}

RUN_PACKAGES="cmake ninja-build ccache g++ qt6-base-dev libsqlite3-dev zlib1g-dev xorriso
fonts-dejavu-core adwaita-icon-theme"
TEST_PACKAGES="libgtest-dev googletest clang clang-format genisoimage libarchive-tools
p7zip-full dvdauthor ffmpeg udftools udfclient util-linux qt6-svg-dev desktop-file-utils appstream
xdg-utils dpkg-dev"
BENCH_PACKAGES="hyperfine time xvfb xauth"
# The tests' stand-ins for the family's sibling programs are small Python scripts.
TEST_PACKAGES="$TEST_PACKAGES python3"

case "$tier" in
run) packages=$RUN_PACKAGES ;;
test) packages="$RUN_PACKAGES $TEST_PACKAGES" ;;
bench) packages="$RUN_PACKAGES $TEST_PACKAGES $BENCH_PACKAGES" ;;
*)
    echo "usage: $0 run|test|bench" >&2
    exit 2
    ;;
esac

if [ "$(id -u)" -eq 0 ]; then
    SUDO=""
else
    SUDO="sudo"
fi
updated=""

missing_of() {
    for p in "$@"; do
        if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
            printf ' %s' "$p"
        fi
    done
}

install_missing() {
    # shellcheck disable=SC2046,SC2086
    missing=$(missing_of $@)
    [ -z "$missing" ] && return 0
    echo "Installing:$missing"
    export DEBIAN_FRONTEND=noninteractive
    if [ -z "$updated" ]; then
        $SUDO apt-get update -qq
        updated=1
    fi
    # shellcheck disable=SC2086
    $SUDO apt-get install -y -qq --no-install-recommends $missing
}

# shellcheck disable=SC2086
install_missing $packages

# The sanitizers' runtime comes apart from clang, one package per clang release: take the one
# of the clang that is installed.
if [ "$tier" != run ]; then
    clang_major=$(clang -dumpversion | cut -d. -f1)
    install_missing "libclang-rt-$clang_major-dev"
fi
