#!/usr/bin/env bash
# The dialog benchmark: builds the program, hl-appmgr, hl-settingsd and the benchmark driver, starts a
# private Xvfb (no window manager) and the settings service, and measures the resident dialog against a one-shot `zenity --question` on it.
# Prints the machine, then the table (Markdown; --json for JSON). Arguments go to the driver, e.g.
#   bash scripts/bench-dialog.sh --backends software,default --requests 200 --starts 30
# Exit status: the driver's (0 measured, 1 usage, 2 set-up failed, 3 a measurement failed), or 3 when
# Xvfb does not start.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh >&2
cmake --preset default >/dev/null
cmake --build --preset default -j "$(nproc)" --target access_arbiter hl-appmgr hl-settingsd \
  hl_access_arbiter_dialog_benchmark >&2

BIN=build/default
WORK=$(mktemp -d "${TMPDIR:-/tmp}/hl-bench-dialog.XXXXXX")
XVFB=""
finish() {
  if [ -n "$XVFB" ]; then kill "$XVFB" 2>/dev/null || true; wait "$XVFB" 2>/dev/null || true; fi
  rm -rf "$WORK"
}
trap finish EXIT

Xvfb -displayfd 6 -screen 0 1280x1024x24 -nolisten tcp 6> "$WORK/display" 2> "$WORK/xvfb.log" &
XVFB=$!
for _ in $(seq 100); do [ -s "$WORK/display" ] && break; sleep 0.1; done
[ -s "$WORK/display" ] || { echo "bench-dialog: Xvfb did not start (see $WORK/xvfb.log)" >&2; exit 3; }
export DISPLAY=":$(head -1 "$WORK/display")"
export QT_QPA_PLATFORM=xcb
# The session's UI font family, for the program and zenity alike.
export FONTCONFIG_FILE="$PWD/tools/hosted-session/fontconfig/fonts.conf"

json=0
for argument in "$@"; do [ "$argument" = "--json" ] && json=1; done
if [ $json -eq 0 ]; then
  echo "Machine: $(lscpu | sed -n 's/^Model name: *//p' | head -1), $(nproc) CPUs," \
       "$(free -g | awk '/^Mem:/ {print $2}') GiB, Linux $(uname -r)," \
       "Qt $(dpkg-query -W -f='${Version}' libqt6core6 2>/dev/null || echo '?')," \
       "zenity $(dpkg-query -W -f='${Version}' zenity 2>/dev/null || echo '?')," \
       "Xvfb $DISPLAY without a window manager"
fi
"$BIN/src/access_arbiter/hl_access_arbiter_dialog_benchmark" \
  --appmgr "$BIN/tools/hl-appmgr/hl-appmgr" --settingsd "$BIN/tools/hl-settingsd/hl-settingsd" --program "$PWD/$BIN/src/access_arbiter/access_arbiter" "$@"
