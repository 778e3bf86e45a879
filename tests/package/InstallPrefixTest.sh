#!/bin/sh
# Installs this build tree into a temporary prefix and checks the administrator side
# as `cmake --install` lays it out: the helper in libexec (executable, not setuid, the
# path an installed `veltro` looks at) and its polkit action, valid against polkit's
# DTD, naming that very helper and asking with the application's prompt sentence.
# Usage: InstallPrefixTest.sh BUILD_DIR. Exit 77 (skipped) without xmllint or the DTD.
set -eu
dtd=/usr/share/polkit-1/policyconfig-1.dtd
command -v xmllint >/dev/null 2>&1 && [ -f "$dtd" ] || { echo "xmllint or polkit's DTD is missing"; exit 77; }
build=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "FAIL: $*"; status=1; }
status=0

prefix=$work/prefix
cmake --install "$build" --prefix "$prefix" >"$work/install.log" 2>&1 || { cat "$work/install.log"; exit 1; }
helper=$prefix/libexec/veltro/veltro-helper
policy=$prefix/share/polkit-1/actions/app.veltro.Veltro.helper.policy
[ -x "$helper" ] && [ ! -u "$helper" ] && [ ! -g "$helper" ] || fail "helper missing, not executable or setuid"
[ -x "$prefix/bin/veltro" ] || fail "veltro missing"

xmllint --noout --nonet --dtdvalid "$dtd" "$policy" || fail "policy does not validate"
action='//action[@id="app.veltro.Veltro.helper"]'
path=$(xmllint --nonet --xpath "string($action/annotate[@key='org.freedesktop.policykit.exec.path'])" "$policy")
[ "$path" = "$helper" ] || fail "exec.path is '$path', not the installed helper"
message=$(xmllint --nonet --xpath "string($action/message[not(@xml:lang)])" "$policy")
[ "$message" = "Veltro needs administrator privileges to clean system files." ] || fail "message '$message'"
[ "$(xmllint --nonet --xpath "string($action/defaults/allow_active)" "$policy")" = auth_admin ] ||
    fail "the action must ask for the administrator every time"

# Without a work list the installed helper refuses and does nothing.
if "$helper" clean </dev/null >"$work/out" 2>&1; then fail "helper accepted an empty list"; fi
exit $status
