#!/usr/bin/env bash
# The hosted session end to end on a real X server (Xvfb): hl-appmgr starts the real AccessArbiter,
# hl-ask asks, real X clicks (xdotool) on Approve and then on Decline give exit codes 0 and 1, and
# SIGTERM to hl-appmgr ends the program and the manager cleanly.
#   e2e_session_test.sh HL_APPMGR ACCESS_ARBITER HL_ASK
set -uo pipefail
APPMGR=$1
PROGRAM=$2
ASK=$3
WORK=$(mktemp -d)
export HL_RUNTIME_DIR="$WORK/rt"
export QT_QPA_PLATFORM=xcb QT_QUICK_BACKEND=software
XVFB="" MANAGER=""
fail() { echo "FAIL: $*" >&2; cat "$WORK/log" >&2 2>/dev/null; exit 1; }
cleanup() {
  [ -n "$MANAGER" ] && kill "$MANAGER" 2>/dev/null
  [ -n "$XVFB" ] && kill "$XVFB" 2>/dev/null
  wait 2>/dev/null; rm -rf "$WORK"
}
trap cleanup EXIT

Xvfb -displayfd 6 -screen 0 1280x1024x24 -nolisten tcp 6> "$WORK/display" 2> /dev/null &
XVFB=$!
for _ in $(seq 100); do [ -s "$WORK/display" ] && break; sleep 0.1; done
[ -s "$WORK/display" ] || fail "Xvfb did not start"
export DISPLAY=":$(head -1 "$WORK/display")"

"$APPMGR" run --name AccessArbiter -- "$PROGRAM" 2> "$WORK/log" &
MANAGER=$!

# ask X Y EXPECTED_CODE EXPECTED_TEXT: one request answered by a click at (X, Y) of the dialog.
ask() {
  "$ASK" --wait-for-service 60000 --timeout 120000 > "$WORK/answer" 2> "$WORK/ask.err" &
  local asker=$!
  local window
  window=$(timeout 60 xdotool search --sync --onlyvisible --name '^AccessArbiter$' | head -1)
  [ -n "$window" ] || fail "the dialog was not mapped"
  sleep 0.5
  xdotool mousemove --window "$window" "$1" "$2" click 1
  wait "$asker"
  local rc=$?
  [ $rc -eq "$3" ] || fail "hl-ask exited $rc, not $3: $(cat "$WORK/ask.err")"
  [ "$(cat "$WORK/answer")" = "$4" ] || fail "hl-ask printed '$(cat "$WORK/answer")', not $4"
  # The click hides the dialog before the next request.
  for _ in $(seq 100); do
    xdotool search --onlyvisible --name '^AccessArbiter$' > /dev/null 2>&1 || return 0
    sleep 0.1
  done
  fail "the dialog stayed up after the click"
}
ask 234 110 0 approved
ask 86 110 1 declined

pid=$(grep -oE 'AccessArbiter\[[0-9]+\]: started' "$WORK/log" | head -1 | grep -oE '[0-9]+')
[ -n "$pid" ] || fail "no start line"
kill -0 "$pid" || fail "the program is not running after two requests"
[ "$(grep -cE 'AccessArbiter\[[0-9]+\]: started' "$WORK/log")" -eq 1 ] || fail "the program was restarted"

kill -TERM "$MANAGER"
wait "$MANAGER"; rc=$?
MANAGER=""
[ $rc -eq 0 ] || fail "hl-appmgr exited $rc"
grep -qE "AccessArbiter\[$pid\]: stopping \(SIGTERM\)" "$WORK/log" || fail "no stop line"
grep -qE "AccessArbiter\[$pid\]: (exited with status [0-9]+|killed by signal [0-9]+) \(stopped\)" "$WORK/log" || fail "the end was not seen"
kill -0 "$pid" 2>/dev/null && fail "the program outlived the manager"
echo PASS
