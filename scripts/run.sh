#!/usr/bin/env bash
# A hosted session: installs what is needed, builds, starts hl-settingsd for the non-persistent
# settings (the program's language) and runs AccessArbiter under hl-appmgr, the hosted application
# manager. Once the program reports ReadyToShowUI, hl-ask asks for a decision:
# the dialog appears on the display and the answer ("approved" or "declined") is printed.
#
# Without a display the same session runs under Xvfb: the dialog as shown is saved to
# dialog-shown.png (or $HL_SCREENSHOT), Approve is clicked with a real X event (xdotool), the
# answer is printed and the session ends cleanly.
#
# Environment: HL_LANGUAGE (en-US, ru-RU, es-MX, pt-BR: set with hl-settings before the program
# starts; else the service's default, en-US), QT_QUICK_BACKEND (default software), HL_SCREENSHOT;
# HL_RUNTIME_DIR as for every hosted program, so `hl-appmgr status` and `hl-ask` from another shell reach this session. The manager and the program log to standard error.
# Exit status: hl-ask's (0 approved, 1 declined, 2 error), or 3 when the session can't start.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
cmake --preset default >/dev/null
cmake --build --preset default -j "$(nproc)" --target access_arbiter access_arbiter_preview hl-ipc hl-appmgr hl-ask \
  hl-settingsd hl-settings

BIN=build/default
SESSION=$(mktemp -d "${TMPDIR:-/tmp}/hl-session.XXXXXX")
# The session provides the platform's UI font family, as the hosted platform's session would.
export FONTCONFIG_FILE="$PWD/tools/hosted-session/fontconfig/fonts.conf"
export QT_QUICK_BACKEND="${QT_QUICK_BACKEND:-software}"
SCREENSHOT="${HL_SCREENSHOT:-$PWD/dialog-shown.png}"

XVFB="" MANAGER="" SETTINGSD=""
end_session() {
  if [ -n "$MANAGER" ]; then kill -TERM "$MANAGER" 2>/dev/null || true; wait "$MANAGER" 2>/dev/null || true; fi
  if [ -n "$SETTINGSD" ]; then kill "$SETTINGSD" 2>/dev/null || true; wait "$SETTINGSD" 2>/dev/null || true; fi
  if [ -n "$XVFB" ]; then kill "$XVFB" 2>/dev/null || true; wait "$XVFB" 2>/dev/null || true; fi
  rm -rf "$SESSION"
}
trap end_session EXIT

headless=0
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
  headless=1
  echo "run: no display found; running the session under Xvfb" >&2
  Xvfb -displayfd 6 -screen 0 1280x1024x24 -nolisten tcp 6> "$SESSION/display" 2> "$SESSION/xvfb.log" &
  XVFB=$!
  for _ in $(seq 100); do [ -s "$SESSION/display" ] && break; sleep 0.1; done
  [ -s "$SESSION/display" ] || { echo "run: Xvfb did not start (see $SESSION/xvfb.log)" >&2; exit 3; }
  export DISPLAY=":$(head -1 "$SESSION/display")"
  export QT_QPA_PLATFORM=xcb
fi

# The non-persistent settings service, from its defaults file; the program reads its language there.
"$BIN/tools/hl-settingsd/hl-settingsd" hl.settings_manager.MSmgr > "$SESSION/settingsd.out" &
SETTINGSD=$!
for _ in $(seq 100); do
  grep -q '^ready$' "$SESSION/settingsd.out" 2>/dev/null && break
  kill -0 "$SETTINGSD" 2>/dev/null || { echo "run: hl-settingsd ended" >&2; exit 3; }
  sleep 0.1
done
grep -q '^ready$' "$SESSION/settingsd.out" || { echo "run: hl-settingsd did not start" >&2; exit 3; }
if [ -n "${HL_LANGUAGE:-}" ]; then
  "$BIN/tools/hl-settings/hl-settings" --service hl.settings_manager.MSmgr set locale/language "$HL_LANGUAGE" ||
    { echo "run: the language could not be set" >&2; exit 3; }
fi

"$BIN/tools/hl-appmgr/hl-appmgr" run --name AccessArbiter -- "$PWD/$BIN/src/access_arbiter/access_arbiter" "$@" \
  2> >(tee "$SESSION/appmgr.log" >&2) &
MANAGER=$!

# Ask once the program has reported ReadyToShowUI (a build without the manager client never does:
# then once it has logged that it is ready; hl-ask waits for the service itself).
for _ in $(seq 300); do
  grep -q "AccessArbiter\[[0-9]*\]: ReadyToShowUI" "$SESSION/appmgr.log" 2>/dev/null && break
  grep -q "AccessArbiter is ready" "$SESSION/appmgr.log" 2>/dev/null && break
  kill -0 "$MANAGER" 2>/dev/null || { echo "run: hl-appmgr ended" >&2; exit 3; }
  sleep 0.1
done

if [ $headless -eq 0 ]; then
  echo "run: asking; answer in the dialog" >&2
  set +e
  "$BIN/tools/hl-ask/hl-ask" --wait-for-service 30000
  answer=$?
  set -e
  exit $answer
fi

"$BIN/tools/hl-ask/hl-ask" --wait-for-service 30000 > "$SESSION/answer" &
ASK=$!
window=$(timeout 30 xdotool search --sync --onlyvisible --name '^AccessArbiter$' | head -1) || true
[ -n "$window" ] || { echo "run: the dialog did not appear" >&2; exit 3; }
sleep 0.5  # let the first frame be drawn
import -window root "$SCREENSHOT"
echo "run: the dialog as shown: $SCREENSHOT" >&2
# Approve is the right-hand button of the 320x156 dialog.
xdotool mousemove --window "$window" 234 110 click 1
set +e
wait "$ASK"
answer=$?
set -e
echo "run: the answer: $(cat "$SESSION/answer")" >&2
cat "$SESSION/answer"
exit $answer
