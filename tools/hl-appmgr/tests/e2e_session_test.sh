#!/usr/bin/env bash
# The hosted session end to end on a real X server (Xvfb): hl-appmgr starts the real AccessArbiter,
# hl-ask asks, real X clicks (xdotool) on Approve and then on Decline give exit codes 0 and 1, and
# SIGTERM to hl-appmgr ends the program with a normal stop and the manager cleanly. The manager's log
# of the whole run then holds exactly GetUpdateHandle, ReadyToInitialize, ReadyToShowUI, Pings and
# StateChanged(-2) from the program, in that order, with Pings never closer than 1000 ms. SETTINGS
# serves the non-persistent settings the program reads its language from.
#   e2e_session_test.sh HL_APPMGR ACCESS_ARBITER HL_ASK SETTINGS
set -uo pipefail
APPMGR=$1
PROGRAM=$2
ASK=$3
SETTINGS=$4
WORK=$(mktemp -d)
export HL_RUNTIME_DIR="$WORK/rt"
export QT_QPA_PLATFORM=xcb QT_QUICK_BACKEND=software
XVFB="" MANAGER="" SETTINGSD=""
fail() { echo "FAIL: $*" >&2; cat "$WORK/log" >&2 2>/dev/null; exit 1; }
cleanup() {
  [ -n "$MANAGER" ] && kill "$MANAGER" 2>/dev/null
  [ -n "$XVFB" ] && kill "$XVFB" 2>/dev/null
  [ -n "$SETTINGSD" ] && kill "$SETTINGSD" 2>/dev/null
  wait 2>/dev/null; rm -rf "$WORK"
}
trap cleanup EXIT

Xvfb -displayfd 6 -screen 0 1280x1024x24 -nolisten tcp 6> "$WORK/display" 2> /dev/null &
XVFB=$!
for _ in $(seq 100); do [ -s "$WORK/display" ] && break; sleep 0.1; done
[ -s "$WORK/display" ] || fail "Xvfb did not start"
export DISPLAY=":$(head -1 "$WORK/display")"

"$SETTINGS" hl.settings_manager.MSmgr > /dev/null 2>&1 &
SETTINGSD=$!

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

# A few seconds of pings for the cadence.
for _ in $(seq 100); do
  [ "$(grep -cE "AccessArbiter\[$pid\]: Ping$" "$WORK/log")" -ge 6 ] && break
  sleep 0.1
done

kill -TERM "$MANAGER"
wait "$MANAGER"; rc=$?
MANAGER=""
[ $rc -eq 0 ] || fail "hl-appmgr exited $rc"
grep -qE "AccessArbiter\[$pid\]: stopping \(SIGTERM\)" "$WORK/log" || fail "no stop line"
# A normal stop: the signal ends the event loop, the program reports and exits 0 by itself.
grep -qE "AccessArbiter\[$pid\]: exited with status 0 \(stopped\)" "$WORK/log" || fail "no normal stop"
grep -q "AccessArbiter stopped with code 0" "$WORK/log" || fail "the program did not log its stop"
# The dialog's document outlives the view it binds to; the teardown must not trip a script error.
! grep -q "TypeError" "$WORK/log" || fail "a script error in the log: $(grep "TypeError" "$WORK/log")"
kill -0 "$pid" 2>/dev/null && fail "the program outlived the manager"

# Every call the manager recorded from the program, in order, and the spacing of its Pings.
python3 - "$WORK/log" "$pid" <<'PY' || fail "the recorded lifecycle is wrong"
import datetime, re, sys
log, pid = sys.argv[1], sys.argv[2]
calls = []
for line in open(log, errors="replace"):
    m = re.match(r"(\S+)Z \S+ +\[APPMGR\] .*: AccessArbiter\[(\d+)\]: (GetUpdateHandle|ReadyToInitialize|"
                 r"ReadyToShowUI|Ping|StateChanged\(-?\d+\)|FinishWithInternalError.*)$", line)
    if m:
        assert m.group(2) == pid, "a call under another pid: " + line
        calls.append((datetime.datetime.fromisoformat(m.group(1)), m.group(3)))
names = [name for _, name in calls]
pings = names.count("Ping")
assert pings >= 5, names
assert names == ["GetUpdateHandle", "ReadyToInitialize", "ReadyToShowUI"] + ["Ping"] * pings + ["StateChanged(-2)"], names
times = [at for at, name in calls if name == "Ping"]
gaps = [(b - a).total_seconds() * 1000 for a, b in zip(times, times[1:])]
# The program pings at most once per 1000 ms, on its Qt timer's schedule. The manager stamps a Ping
# when it arrives, so each stamp carries a delivery delay across two processes: on a quiet machine the
# spacing was 999.5 to 1000.4 ms, but under load single Pings arrive late (gaps of 1005.4 then 994.6,
# and once 1035 then 995.6, were seen; under the sanitizers consecutive Pings differ by over 1 ms),
# which shortens the next gap although nothing was sent early. So each Ping is held to the schedule
# of every earlier one: Ping k must come no earlier than (k - j) * 1000 ms after Ping j, less 5 ms of
# delivery jitter, for some earlier j. A second Ping in one tick, or a timer that runs fast, falls
# behind every earlier schedule and fails; a late delivery does not. The first Ping is left out of the
# schedule: it comes when the event loop begins, which may be later than the timer's first tick,
# and the timer then keeps its own schedule (a first gap below 1000 ms after a slow start). A gap
# over 1500 ms would be a missing Ping.
offsets = [(at - times[1]).total_seconds() * 1000 - 1000 * k for k, at in enumerate(times[1:])]
for k in range(1, len(offsets)):
    assert offsets[k] >= min(offsets[:k]) - 5.0, ("Ping %d came early" % (k + 1), gaps)
assert max(gaps) <= 1500.0, gaps
print("lifecycle: %d calls, %d pings, spacing %.1f to %.1f ms" % (len(names), pings, min(gaps), max(gaps)))
PY
echo PASS
