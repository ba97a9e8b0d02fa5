#!/usr/bin/env bash
# The hosted session end to end as hl-session runs it, on a private Xvfb: hl-appmgr starts the real
# AccessArbiter, hl-ask asks, a real X click (xdotool) on Approve gives exit code 0, and the end of the
# session (SIGTERM to hl-appmgr) ends the program with a normal stop and the
# manager cleanly. The manager's log of the whole run then holds exactly GetUpdateHandle,
# ReadyToInitialize, ReadyToShowUI, Pings and StateChanged(-2) from the program, in that order, with
# Pings never closer than 1000 ms, and nothing of the session is left running.
#   e2e_session_test.sh BIN_DIR
set -uo pipefail
BIN=$1
WORK=$(mktemp -d)
LOG="$WORK/session/session.log"
fail() { echo "FAIL: $*" >&2; cat "$LOG" >&2 2>/dev/null; exit 1; }
trap 'rm -rf "$WORK"' EXIT

# What a person does in the session: a request answered by a click, then a few seconds of Pings for
# their cadence.
cat > "$WORK/in-session.sh" <<'IN'
set -uo pipefail
LOG=$1
source "$2"
# ask X Y EXPECTED_CODE EXPECTED_TEXT: one request answered by a click at (X, Y) of the dialog.
ask() {
  hl-ask --timeout 120000 > "$LOG.answer" 2> "$LOG.ask-err" &
  local asker=$!
  click_dialog "$1" "$2"
  wait "$asker"
  local rc=$?
  [ $rc -eq "$3" ] || { echo "hl-ask exited $rc, not $3: $(cat "$LOG.ask-err")" >&2; exit 11; }
  [ "$(cat "$LOG.answer")" = "$4" ] || { echo "hl-ask printed '$(cat "$LOG.answer")', not $4" >&2; exit 12; }
}
ask 234 110 0 approved
for _ in $(seq 100); do
  [ "$(grep -cE "AccessArbiter\[[0-9]+\]: Ping$" "$LOG")" -ge 6 ] && break
  sleep 0.1
done
IN

PATH="$BIN:$PATH" "$BIN/hl-session" --xvfb --quiet --directory "$WORK/session" -- bash "$WORK/in-session.sh" "$LOG" \
  "$(dirname "$0")/../../hosted-session/tests/click_dialog.sh"
rc=$?
[ $rc -eq 0 ] || fail "the session's command exited $rc"

pid=$(grep -oE 'AccessArbiter\[[0-9]+\]: started' "$LOG" | head -1 | grep -oE '[0-9]+')
[ -n "$pid" ] || fail "no start line"
[ "$(grep -cE 'AccessArbiter\[[0-9]+\]: started' "$LOG")" -eq 1 ] || fail "the program was restarted"
grep -qE "AccessArbiter\[$pid\]: stopping \(SIGTERM\)" "$LOG" || fail "no stop line"
# A normal stop: the signal ends the event loop, the program reports and exits 0 by itself.
grep -qE "AccessArbiter\[$pid\]: exited with status 0 \(stopped\)" "$LOG" || fail "no normal stop"
grep -q "AccessArbiter stopped with code 0" "$LOG" || fail "the program did not log its stop"
grep -q "hl-appmgr stopped" "$LOG" || fail "the manager did not end cleanly"
# The dialog's document outlives the view it binds to; the teardown must not trip a script error.
! grep -q "TypeError" "$LOG" || fail "a script error in the log: $(grep "TypeError" "$LOG")"
kill -0 "$pid" 2>/dev/null && fail "the program outlived the session"
pgrep -f "$WORK/session" > /dev/null && fail "a process of the session outlived it: $(pgrep -af "$WORK/session")"

# Every call the manager recorded from the program, in order, and the spacing of its Pings.
python3 - "$LOG" "$pid" <<'PY' || fail "the recorded lifecycle is wrong"
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
