#!/usr/bin/env bash
# Installs what is needed, builds, and runs AccessArbiter in a hosted session (hl-session: the
# settings service, then the program under hl-appmgr). Once the program reports ReadyToShowUI,
# hl-ask asks for a decision: the dialog appears on the display and the answer ("approved" or
# "declined") is printed.
#
# Without a display the same session runs under Xvfb: the dialog as shown is saved to
# dialog-shown.png (or $HL_SCREENSHOT), Approve is clicked with a real X event (xdotool), the
# answer is printed and the session ends cleanly.
#
# Environment: HL_LANGUAGE (en-US, ru-RU, es-MX, pt-BR: set before the program starts; else the
# service's default, en-US), QT_QUICK_BACKEND (default software), HL_SCREENSHOT. The manager and the
# program log to standard error.
# Exit status: hl-ask's (0 approved, 1 declined, 3 no service, 4 the service failed, 5 timed out),
# or 125 when the session can't start.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
cmake --preset default >/dev/null
cmake --build --preset default -j "$(nproc)" --target access_arbiter access_arbiter_preview hl-ipc hl-appmgr hl-ask \
  hl-settingsd hl-settings hl-session

BIN="$PWD/build/default/bin"
export QT_QUICK_BACKEND="${QT_QUICK_BACKEND:-software}"
session=("$BIN/hl-session")
if [ -n "${HL_LANGUAGE:-}" ]; then session+=(--language "$HL_LANGUAGE"); fi

if [ -n "${DISPLAY:-}" ] || [ -n "${WAYLAND_DISPLAY:-}" ]; then
  echo "run: asking; answer in the dialog" >&2
  exec "${session[@]}" -- "$BIN/hl-ask" --wait-for-service 30000
fi

echo "run: no display found; running the session under Xvfb" >&2
export HL_SCREENSHOT="${HL_SCREENSHOT:-$PWD/dialog-shown.png}" BIN
# shellcheck disable=SC2016 # expanded by the inner shell, in the session
exec "${session[@]}" -- bash -c '
  set -uo pipefail
  answer=$(mktemp)
  "$BIN/hl-ask" --wait-for-service 30000 > "$answer" &
  asker=$!
  window=""
  # A search fails as a whole when a window goes away under it (BadWindow): search again.
  for _ in $(seq 300); do
    window=$(xdotool search --onlyvisible --name "^AccessArbiter$" 2>/dev/null | head -1) || true
    [ -n "$window" ] && break
    sleep 0.1
  done
  [ -n "$window" ] || { echo "run: the dialog did not appear" >&2; kill "$asker"; exit 125; }
  sleep 0.5  # let the first frame be drawn
  import -window root "$HL_SCREENSHOT"
  echo "run: the dialog as shown: $HL_SCREENSHOT" >&2
  # Approve is the right-hand button of the 320x156 dialog.
  xdotool mousemove --window "$window" 234 110 click 1
  wait "$asker"
  status=$?
  echo "run: the answer: $(cat "$answer")" >&2
  cat "$answer"
  rm -f "$answer"
  exit $status'
