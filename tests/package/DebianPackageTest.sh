#!/bin/sh
# Builds the Debian package from this build tree and checks what a user would get
# from `apt install`: the files in their system places (the administrator helper and
# its polkit action among them), root-owned and not setuid,
# the control fields, and the desktop files accepted by their validators.
# Usage: DebianPackageTest.sh BUILD_DIR. Exit 77 (skipped) without dpkg-deb.
set -eu
command -v dpkg-deb >/dev/null 2>&1 || { echo "dpkg-deb is not installed"; exit 77; }
build=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "FAIL: $*"; status=1; }
status=0

(cd "$build" && cpack -G DEB -B "$work/out" >"$work/cpack.log" 2>&1) || { cat "$work/cpack.log"; exit 1; }
deb=$(ls "$work"/out/veltro_*_"$(dpkg --print-architecture)".deb)
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$build/CMakeCache.txt")
[ "$(basename "$deb")" = "veltro_${version}_$(dpkg --print-architecture).deb" ] || fail "file name $(basename "$deb")"

dpkg-deb -c "$deb" >"$work/list"
for path in ./usr/bin/veltro \
    ./usr/share/applications/app.veltro.Veltro.desktop \
    ./usr/share/metainfo/app.veltro.Veltro.metainfo.xml \
    ./usr/share/icons/hicolor/scalable/apps/app.veltro.Veltro.svg \
    ./usr/share/doc/veltro/copyright ./usr/share/doc/veltro/changelog.gz \
    ./usr/share/doc/veltro/LICENSE-phosphor.txt ./usr/share/man/man1/veltro.1.gz \
    ./usr/libexec/veltro/veltro-helper ./usr/share/polkit-1/actions/app.veltro.Veltro.helper.policy; do
    grep -q " $path\$" "$work/list" || fail "missing $path"
done
awk '$2 != "root/root" { print "not root-owned: " $0 }' "$work/list" | grep . && status=1
awk '$1 ~ /^-..s|^-.....s/ { print "setuid or setgid: " $0 }' "$work/list" | grep . && status=1

[ "$(dpkg-deb -f "$deb" Package)" = veltro ] || fail "Package"
[ "$(dpkg-deb -f "$deb" Version)" = "$version" ] || fail "Version"
depends=$(dpkg-deb -f "$deb" Depends)
for needed in libqt6core6 libqt6quick6 libc6 qml6-module-qtquick-controls pkexec polkitd; do
    echo "$depends" | grep -q "\\b$needed\\b" || fail "Depends lacks $needed: $depends"
done

dpkg-deb -x "$deb" "$work/root"
desktop-file-validate "$work/root/usr/share/applications/app.veltro.Veltro.desktop" || fail "desktop entry"
policy=$work/root/usr/share/polkit-1/actions/app.veltro.Veltro.helper.policy
xmllint --noout --nonet --dtdvalid /usr/share/polkit-1/policyconfig-1.dtd "$policy" || fail "polkit policy"
grep -q '>/usr/libexec/veltro/veltro-helper</annotate>' "$policy" || fail "exec.path is not the packaged helper"
appstreamcli validate --no-net --pedantic "$work/root/usr/share/metainfo/app.veltro.Veltro.metainfo.xml" \
    >"$work/appstream" 2>&1 || { cat "$work/appstream"; fail "metainfo"; }
"$work/root/usr/bin/veltro" --version | grep -q "^Veltro $version\$" || fail "the packaged binary does not run"
exit $status
