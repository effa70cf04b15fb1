#!/bin/sh
# usage: check-install.sh BUILD_DIR
set -eu

build=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
app=com.brindleway.Ovrin
sample=$build/bin/sample.iso

fail() {
    echo "FAIL: $*" >&2
    exit 1
}

expect_files() {
    under=$1
    shift
    for f in "$@"; do
        [ -e "$under/$f" ] || fail "$under/$f is missing"
    done
}

# The installed program runs on its own: settings, locks and screen are the test's.
export QT_QPA_PLATFORM=offscreen
export BRINDLEWAY_INSTANCE_SCOPE="install-test-$$"
export BRINDLEWAY_USER_REGISTRY="$work/user.db" BRINDLEWAY_MACHINE_REGISTRY="$work/machine.db"

starts_and_paints() {
    OVRIN_QUIT_AFTER_FIRST_PAINT=1 timeout 60 "$1" "$sample" ||
        fail "$1 did not start and paint the sample"
}

program_files="lib/ovrin/ovrin lib/ovrin/ovrin-cli lib/ovrin/Qmz.so
lib/ovrin/Language/Enu/Tvnrc.txt lib/ovrin/Image/MainFrame/bg_fireBro_01.png
lib/ovrin/Image/Dialogs/MessageBox/icon_warning.png bin/ovrin bin/ovrin-cli
share/applications/$app.desktop share/metainfo/$app.metainfo.xml
share/mime/packages/$app.xml share/icons/hicolor/scalable/apps/ovrin.svg"
for size in 16 22 24 32 48 64 128 256; do
    program_files="$program_files share/icons/hicolor/${size}x${size}/apps/ovrin.png"
done

# A throw-away prefix, as `make install PREFIX=...` makes it.
prefix=$work/prefix
cmake --install "$build" --prefix "$prefix" >/dev/null
# shellcheck disable=SC2086
expect_files "$prefix" $program_files
[ "$(readlink "$prefix/bin/ovrin")" = ../lib/ovrin/ovrin ] || fail "bin/ovrin is no link"
# The install brought the MIME cache of the prefix up to date.
expect_files "$prefix" share/mime/application/x-torvane-image.xml \
    share/mime/application/x-torvane-recording-image.xml

desktop-file-validate "$prefix/share/applications/$app.desktop"
appstreamcli validate --no-net "$prefix/share/metainfo/$app.metainfo.xml" >/dev/null ||
    appstreamcli validate --no-net "$prefix/share/metainfo/$app.metainfo.xml"

starts_and_paints "$prefix/bin/ovrin"
"$prefix/bin/ovrin-cli" info "$sample" >/dev/null

# The desktop's default for CD images, in a home of the test's own.
export XDG_CONFIG_HOME="$work/config" XDG_DATA_HOME="$work/data"
export XDG_DATA_DIRS="$prefix/share:/usr/share"
mkdir -p "$XDG_CONFIG_HOME" "$XDG_DATA_HOME"
xdg-mime default "$app.desktop" application/x-cd-image
[ "$(xdg-mime query default application/x-cd-image)" = "$app.desktop" ] ||
    fail "xdg-mime does not name $app.desktop for application/x-cd-image"

# The Debian package: its dependencies read off its programs, its files under /usr.
cpack -G DEB --config "$build/CPackConfig.cmake" -B "$work/package" >/dev/null
deb=$(ls "$work"/package/ovrin_*.deb)
[ "$(dpkg-deb -f "$deb" Package)" = ovrin ] || fail "package name"
[ "$(dpkg-deb -f "$deb" Architecture)" = "$(dpkg --print-architecture)" ] || fail "architecture"
depends=$(dpkg-deb -f "$deb" Depends)
for package in libc6 libqt6core6 libqt6gui6 libqt6widgets6 libsqlite3-0 zlib1g fonts-dejavu-core; do
    case "$depends" in
    *"$package "* | *"$package,"* | *"$package") ;;
    *) fail "Depends lacks $package: $depends" ;;
    esac
done
dpkg-deb -c "$deb" >"$work/contents"
if grep -E 'tests|FakeQmz|bench|gallery|skinpainter' "$work/contents"; then
    fail "the package holds test or tool files"
fi
root=$work/root
dpkg-deb -x "$deb" "$root"
# shellcheck disable=SC2086
expect_files "$root/usr" $program_files
starts_and_paints "$root/usr/bin/ovrin"
echo "installed, validated, started, packaged: $(basename "$deb")"
