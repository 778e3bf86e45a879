#!/bin/sh
# Installs this build tree the two ways a user gets Veltro and checks what lands:
# `cmake --install` into a prefix of our own, and the Debian package from cpack. Both
# must put the helper where an installed `veltro` looks (libexec/veltro beside bin),
# executable and not setuid, with a polkit action that validates against polkit's DTD
# and names that very helper. The package must hold every file in its system place,
# root-owned, with Depends naming the package of each Qt module the QML imports, and
# desktop files its validators accept.
# Usage: PackageTest.sh BUILD_DIR. Exit 77 (skipped) without dpkg-deb, xmllint or the DTD.
set -eu
dtd=/usr/share/polkit-1/policyconfig-1.dtd
command -v dpkg-deb >/dev/null 2>&1 && command -v xmllint >/dev/null 2>&1 && [ -f "$dtd" ] ||
    { echo "dpkg-deb, xmllint or polkit's DTD is missing"; exit 77; }
build=$1
source=$(cd "$(dirname "$0")/../.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "FAIL: $*"; status=1; }
status=0

# admin_side ROOT PREFIX: the helper and its action installed for PREFIX, found under ROOT.
admin_side() {
    helper=$2/libexec/veltro/veltro-helper
    policy=$1$2/share/polkit-1/actions/app.veltro.Veltro.helper.policy
    [ -x "$1$helper" ] && [ ! -u "$1$helper" ] && [ ! -g "$1$helper" ] || fail "$helper missing or setuid"
    xmllint --noout --nonet --dtdvalid "$dtd" "$policy" || fail "$policy does not validate"
    action='//action[@id="app.veltro.Veltro.helper"]'
    path=$(xmllint --nonet --xpath "string($action/annotate[@key='org.freedesktop.policykit.exec.path'])" "$policy")
    [ "$path" = "$helper" ] || fail "exec.path is '$path', not $helper"
}

cmake --install "$build" --prefix "$work/prefix" >"$work/install.log" 2>&1 || { cat "$work/install.log"; exit 1; }
admin_side "" "$work/prefix"

(cd "$build" && cpack -G DEB -B "$work/out" >"$work/cpack.log" 2>&1) || { cat "$work/cpack.log"; exit 1; }
arch=$(dpkg --print-architecture)
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$build/CMakeCache.txt")
deb=$work/out/veltro_${version}_$arch.deb
[ -f "$deb" ] || { ls "$work/out"; fail "no $(basename "$deb")"; exit 1; }
dpkg-deb -c "$deb" >"$work/list"
for path in bin/veltro libexec/veltro/veltro-helper share/polkit-1/actions/app.veltro.Veltro.helper.policy \
    share/applications/app.veltro.Veltro.desktop share/metainfo/app.veltro.Veltro.metainfo.xml \
    share/icons/hicolor/scalable/apps/app.veltro.Veltro.svg share/veltro/translations/linux_en.qm \
    share/doc/veltro/copyright share/doc/veltro/changelog.gz share/doc/veltro/LICENSE-phosphor.txt \
    share/man/man1/veltro.1.gz; do
    grep -q " \./usr/$path\$" "$work/list" || fail "missing /usr/$path"
done
awk '$2 != "root/root" || $1 ~ /^-..[sS]|^-.....[sS]/ { print "FAIL: not root-owned or setuid: " $0 }' \
    "$work/list" | grep . && status=1

dpkg-deb -f "$deb" Depends | tr ',' '\n' | sed 's/^ *//; s/ .*//' >"$work/depends"
qml=/usr/lib/$(dpkg-architecture -qDEB_HOST_MULTIARCH)/qt6/qml
modules=$(grep -rhoE '^import Qt[A-Za-z.]*' "$source/ui" "$source/app" --include='*.qml' | cut -d' ' -f2 | sort -u)
for module in $modules; do
    owner=$(dpkg -S "$qml/$(echo "$module" | tr . /)/qmldir" 2>/dev/null | cut -d: -f1) || true
    [ -n "$owner" ] && grep -qx "$owner" "$work/depends" || fail "Depends lacks the package of $module: '$owner'"
done
for needed in libqt6core6 libc6 pkexec polkitd; do
    grep -qx "$needed" "$work/depends" || fail "Depends lacks $needed"
done

dpkg-deb -x "$deb" "$work/root"
admin_side "$work/root" /usr
desktop-file-validate "$work/root/usr/share/applications/app.veltro.Veltro.desktop" || fail "desktop entry"
appstreamcli validate --no-net --pedantic "$work/root/usr/share/metainfo/app.veltro.Veltro.metainfo.xml" \
    >"$work/appstream" 2>&1 || { cat "$work/appstream"; fail "metainfo"; }
"$work/root/usr/bin/veltro" --version | grep -qx "Veltro $version" || fail "the packaged binary does not run"
exit $status
