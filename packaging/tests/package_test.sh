#!/usr/bin/env bash
# The .deb as a person gets it: built with cpack from the build tree, accepted by lintian (no error),
# unpacked into a scratch root, its user units accepted by systemd-analyze, the example built against
# the installed header, library and CMake and pkg-config files, and a whole session run from the
# installed files alone on a private Xvfb: the example and the installed hl-ask each get the answer
# of a real click.
#   package_test.sh BUILD_DIR SOURCE_DIR
set -uo pipefail
BUILD=$1
SOURCE=$2
WORK=$(mktemp -d)
fail() { echo "FAIL: $*" >&2; exit 1; }
trap 'rm -rf "$WORK"' EXIT

(cd "$WORK" && cpack -G DEB --config "$BUILD/CPackConfig.cmake" > cpack.log 2>&1) ||
  { cat "$WORK/cpack.log" >&2; fail "cpack failed"; }
deb=$(ls "$WORK"/access-arbiter_*.deb 2>/dev/null | head -1)
[ -n "$deb" ] || fail "no package was made"

lintian --tag-display-limit 0 "$deb" > "$WORK/lintian.log" 2>&1
grep -E '^E: ' "$WORK/lintian.log" && fail "lintian finds errors"
control=$(dpkg-deb -f "$deb" Depends)
for needed in libqt6qml6 qml6-module-qtquick-controls libsystemd0; do
  grep -q "$needed" <<< "$control" || fail "the package does not depend on $needed: $control"
done

ROOT="$WORK/root"
dpkg-deb -x "$deb" "$ROOT" || fail "dpkg-deb -x failed"
for program in usr/bin/hl-appmgr usr/bin/hl-settingsd usr/bin/hl-settings usr/bin/hl-ask usr/bin/hl-ipc \
               usr/bin/hl-session usr/libexec/halcyra/access_arbiter; do
  [ -x "$ROOT/$program" ] || fail "$program is not in the package"
  readelf -d "$ROOT/$program" | grep -qE 'RPATH|RUNPATH' && fail "$program carries a library search path"
  strings -a "$ROOT/$program" | grep -qF "$SOURCE/" && fail "$program holds paths of the build machine"
  [ -f "$ROOT/usr/share/man/man1/$(basename "$program").1.gz" ] || [[ $program == *libexec* ]] ||
    fail "$program has no man page"
done
ls "$ROOT/usr/bin" | grep -qi test && fail "a test program is in the package: $(ls "$ROOT/usr/bin")"
grep -q '^StartupWMClass=access_arbiter$' "$ROOT/usr/share/applications/access_arbiter.desktop" ||
  fail "no desktop entry for the dialog's window class"

# The units as the user's systemd reads them, with the programs they start taken from the scratch
# root: no warning, and a sandbox of low exposure.
mkdir -p "$WORK/units" "$WORK/xdg" && chmod 700 "$WORK/xdg"
for unit in hl-appmgr.service hl-settingsd@.service; do
  [ -f "$ROOT/usr/lib/systemd/user/$unit" ] || fail "$unit is not in the package"
  sed -e "s|=/usr/|=$ROOT/usr/|g" -e "s| /usr/| $ROOT/usr/|g" "$ROOT/usr/lib/systemd/user/$unit" > "$WORK/units/$unit"
done
XDG_RUNTIME_DIR="$WORK/xdg" systemd-analyze --user verify --man=no "$WORK"/units/*.service > "$WORK/verify.log" 2>&1
[ $? -eq 0 ] && [ ! -s "$WORK/verify.log" ] || { cat "$WORK/verify.log" >&2; fail "systemd-analyze verify finds fault with a unit"; }
for unit in "$WORK"/units/*.service; do
  exposure=$(XDG_RUNTIME_DIR="$WORK/xdg" systemd-analyze --user security --offline=true "$unit" 2>&1 |
             sed -n 's/.*Overall exposure level for [^:]*: \([0-9.]*\).*/\1/p')
  [ -n "$exposure" ] && awk -v e="$exposure" 'BEGIN { exit !(e <= 3.0) }' ||
    fail "$(basename "$unit") is exposed at ${exposure:-?} (more than 3.0)"
done
grep -q '^program=/usr/libexec/halcyra/access_arbiter$' "$ROOT/usr/share/halcyra/hl-appmgr/access_arbiter.unit" || fail "the manager's application is not the installed program"

# The example, against the installed files only: CMake's package and pkg-config.
LIBDIR=$(dirname "$(find "$ROOT/usr/lib" -name 'libaccess-arbiter-client.so' | head -1)")
cmake -S "$SOURCE/examples/ask" -B "$WORK/example" -DCMAKE_PREFIX_PATH="$ROOT/usr" > "$WORK/example.log" 2>&1 &&
  cmake --build "$WORK/example" >> "$WORK/example.log" 2>&1 ||
  { cat "$WORK/example.log" >&2; fail "the example does not build against the package"; }
flags=$(PKG_CONFIG_SYSROOT_DIR="$ROOT" PKG_CONFIG_LIBDIR="$LIBDIR/pkgconfig" \
        pkg-config --cflags --libs access-arbiter-client) || fail "pkg-config does not know the library"
cc -o "$WORK/ask-pc" "$SOURCE/examples/ask/ask.c" $flags || fail "the example does not build with pkg-config"

# A session from the installed files alone: the example asks and gets Approve, hl-ask gets Decline.
# Only the library search path is given, as the scratch root is not /usr.
cat > "$WORK/in-session.sh" <<'IN'
set -uo pipefail
source "$CLICK_DIALOG"
# click X EXPECTED -- COMMAND...: runs the asking command, clicks (X, 110) of the dialog, checks the answer.
click() {
  local x=$1 expected=$2
  shift 3
  "$@" > "$WORK/answer" 2> "$WORK/ask-err" &
  local asker=$!
  click_dialog "$x" 110
  wait "$asker"
  [ "$(cat "$WORK/answer")" = "$expected" ] ||
    { echo "$1 answered '$(cat "$WORK/answer")' ($(cat "$WORK/ask-err")), not $expected" >&2; exit 11; }
  for _ in $(seq 100); do
    xdotool search --onlyvisible --name '^AccessArbiter$' > /dev/null 2>&1 || return 0
    sleep 0.1
  done
}
click 234 approved -- "$WORK/example/ask"
click 86 declined -- hl-ask
IN
env -i PATH="$ROOT/usr/bin:/usr/bin:/bin" HOME="$WORK" WORK="$WORK" CLICK_DIALOG="$SOURCE/tools/hosted-session/tests/click_dialog.sh" LD_LIBRARY_PATH="$LIBDIR" \
  QT_QUICK_BACKEND=software ASAN_OPTIONS="${ASAN_OPTIONS:-}" \
  "$ROOT/usr/bin/hl-session" --xvfb --quiet --directory "$WORK/session" -- bash "$WORK/in-session.sh" ||
  { cat "$WORK/session/session.log" >&2; fail "the installed session did not answer both clicks"; }
echo PASS
