#!/usr/bin/env bash
# hl-appmgr with real managed processes: lifecycle lines in order, a hung (stopped) child found
# within its interval + 1 s and restarted, a crashed child restarted, a clean exit left alone, a
# failed start restarted up to the start limit, `command` raising the update event, `status`.
#   hl_appmgr_process_test.sh HL_APPMGR TEST_APP
set -uo pipefail
APPMGR=$1
APP=$2
WORK=$(mktemp -d)
export HL_RUNTIME_DIR="$WORK/rt"
MANAGER=""
fail() { echo "FAIL: $*" >&2; [ -f "$WORK/log" ] && cat "$WORK/log" >&2; [ -n "$MANAGER" ] && kill "$MANAGER" 2>/dev/null; exit 1; }
cleanup() { [ -n "$MANAGER" ] && kill "$MANAGER" 2>/dev/null; wait 2>/dev/null; rm -rf "$WORK"; }
trap cleanup EXIT

# wait_for PATTERN SECONDS: until the manager's log has a line matching PATTERN
wait_for() {
  local deadline=$((SECONDS + $2))
  until grep -qE "$1" "$WORK/log"; do
    [ $SECONDS -ge $deadline ] && fail "no line matching '$1' within $2 s"
    sleep 0.1
  done
}
unit() { # unit NAME MODE [extra lines...]
  local name=$1 mode=$2; shift 2
  { echo "name=$name"; echo "program=$APP"; echo "argument=$mode"; echo "argument=300"
    echo "watchdog_interval_ms=1500"; printf '%s\n' "$@"; } > "$WORK/$name.unit"
}

unit steady run
unit frozen run
unit crasher crash "start_limit=2"
unit quitter exit0
unit broken failstart "start_limit=2" "start_limit_interval_ms=60000"
"$APPMGR" --help | grep -q "Exit codes" || fail "no exit codes in --help"
"$APPMGR" run --unit "$WORK/missing.unit"; [ $? -eq 2 ] || fail "a missing unit file must exit 2"
"$APPMGR" status; [ $? -eq 3 ] || fail "status without a manager must exit 3"

"$APPMGR" run --log-level 1 --unit "$WORK/steady.unit" --unit "$WORK/frozen.unit" --unit "$WORK/crasher.unit" \
  --unit "$WORK/quitter.unit" --unit "$WORK/broken.unit" > "$WORK/out" 2> "$WORK/log" &
MANAGER=$!

# Lifecycle of a normal start, in order.
wait_for 'steady\[[0-9]+\]: Ping' 30
pid=$(grep -oE 'steady\[[0-9]+\]: started' "$WORK/log" | head -1 | grep -oE '[0-9]+')
seq=$(grep -oE "steady\[$pid\]: (GetUpdateHandle|ReadyToInitialize|ReadyToShowUI|Ping)" "$WORK/log" | head -4 | sed 's/.*: //' | tr '\n' ' ')
[ "$seq" = "GetUpdateHandle ReadyToInitialize ReadyToShowUI Ping " ] || fail "steady's sequence: $seq"

# A command reaches the application through the update event and GetCommand.
"$APPMGR" command steady volume 42 || fail "command exited $?"
for _ in $(seq 50); do grep -q "command volume=42 rc=0" "$WORK/out" && break; sleep 0.1; done
grep -q "command volume=42 rc=0" "$WORK/out" || fail "the application did not read the command"

# A hung application: SIGSTOP, found within interval (1.5 s) + 1 s, restarted.
wait_for 'frozen\[[0-9]+\]: Ping' 30
fpid=$(grep -oE 'frozen\[[0-9]+\]: started' "$WORK/log" | head -1 | grep -oE '[0-9]+')
kill -STOP "$fpid"
stopped=$(date +%s%N)
wait_for "frozen\[$fpid\]: hung" 10
found=$(date +%s%N)
[ $(( (found - stopped) / 1000000 )) -le 2500 ] || fail "hang found after $(( (found - stopped) / 1000000 )) ms"
wait_for "frozen\[$fpid\]: killed by signal" 10
wait_for "frozen\[[0-9]+\]: started" 5
[ "$(grep -cE 'frozen\[[0-9]+\]: started' "$WORK/log")" -ge 2 ] || true
for _ in $(seq 100); do [ "$(grep -cE 'frozen\[[0-9]+\]: ReadyToShowUI' "$WORK/log")" -ge 2 ] && break; sleep 0.1; done
[ "$(grep -cE 'frozen\[[0-9]+\]: ReadyToShowUI' "$WORK/log")" -ge 2 ] || fail "frozen was not restarted"

# A crash is restarted until the start limit (2 starts), then left failed.
wait_for 'crasher: start limit of 2 starts' 30
[ "$(grep -cE 'crasher\[[0-9]+\]: killed by signal 6 \(abnormal exit\)' "$WORK/log")" -eq 2 ] || fail "crasher crashes"
# A clean exit is not restarted; a failed start is, up to its limit.
wait_for 'quitter: not restarted' 30
[ "$(grep -cE 'quitter\[[0-9]+\]: started' "$WORK/log")" -eq 1 ] || fail "quitter restarted"
grep -qE 'quitter\[[0-9]+\]: StateChanged\(-2\)' "$WORK/log" || fail "quitter's StateChanged(-2)"
wait_for 'broken: start limit' 30
grep -qE 'broken\[[0-9]+\]: FinishWithInternalError: Failed to start test / asked to fail' "$WORK/log" || fail "broken"
[ "$(grep -cE 'broken\[[0-9]+\]: exited with status 1 \(failed start\)' "$WORK/log")" -eq 2 ] || fail "broken twice"

# status: text and JSON.
sleep 0.5
"$APPMGR" status > "$WORK/status" || fail "status exited $?"
grep -qE '^steady +running +[0-9]+ +[0-9]+\.[0-9]{3}s +0$' "$WORK/status" || fail "status: $(cat "$WORK/status")"
"$APPMGR" status --json | python3 -c '
import json, sys
apps = {a["name"]: a for a in json.load(sys.stdin)["applications"]}
assert apps["steady"]["state"] == "running" and apps["steady"]["ms_since_last_ping"] < 1500, apps
assert apps["frozen"]["restarts"] == 1, apps
assert apps["crasher"]["state"] == "failed" and apps["quitter"]["state"] == "exited", apps
' || fail "status --json"

# SIGTERM ends the applications (they report StateChanged(-2)) and the manager with 0.
kill -TERM "$MANAGER"
wait "$MANAGER"; rc=$?
MANAGER=""
[ $rc -eq 0 ] || fail "the manager exited $rc"
grep -qE "steady\[$pid\]: StateChanged\(-2\)" "$WORK/log" || fail "no StateChanged(-2) from steady"
grep -qE "steady\[$pid\]: exited with status 0 \(stopped\)" "$WORK/log" || fail "steady did not exit cleanly"
"$APPMGR" status; [ $? -eq 3 ] || fail "status after the manager ended must exit 3"
echo "PASS"
