#!/usr/bin/env bash
# The installed tree as a person gets it from `cmake --install`: the programs a person runs in bin/
# and nothing of the tests, and a session started from there alone (no build tree, nothing set up by
# the test) that runs the program under its manager.
#   installed_session_test.sh BUILD_DIR
set -uo pipefail
BUILD=$1
PREFIX=$(mktemp -d)
fail() { echo "FAIL: $*" >&2; cat "$PREFIX/out" >&2 2>/dev/null; exit 1; }
trap 'rm -rf "$PREFIX"' EXIT

cmake --install "$BUILD" --prefix "$PREFIX/usr" > /dev/null || fail "cmake --install failed"
for program in access_arbiter hl-appmgr hl-settingsd hl-settings hl-ask hl-session; do
  [ -x "$PREFIX/usr/bin/$program" ] || fail "$program is not installed"
done
ls "$PREFIX/usr/bin" | grep -q -i test && fail "a test program is installed: $(ls "$PREFIX/usr/bin")"
grep -q '^StartupWMClass=access_arbiter$' "$PREFIX/usr/share/applications/access_arbiter.desktop" ||
  fail "the desktop entry is not installed"

env -i PATH=/usr/bin:/bin HOME="$PREFIX" QT_QUICK_BACKEND=software ASAN_OPTIONS="${ASAN_OPTIONS:-}" \
  "$PREFIX/usr/bin/hl-session" --xvfb -q -- "$PREFIX/usr/bin/hl-appmgr" status > "$PREFIX/out" 2>&1 ||
  fail "the installed session failed"
grep -q "AccessArbiter" "$PREFIX/out" || fail "the installed session ran no AccessArbiter"
echo PASS
