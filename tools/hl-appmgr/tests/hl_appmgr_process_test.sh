#!/usr/bin/env bash
# hl-appmgr with real managed processes: lifecycle lines in order, a hung (stopped) child found
# within its interval + 1 s and restarted, a crashed child restarted, a clean exit left alone, a
# failed start restarted up to the start limit, a start that never gets ready failed by its timeout,
# `command` raising the update event, a Ping from another process refused, the control verbs and
# their exit codes (a table), `status NAME` with the output lines, a stop reaching a child's child, a
# manager stopped for 20 s that blames nobody, and an idle manager that stays asleep.
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
unit lazy noready "start_timeout_ms=1000" "restart=no"
unit parent spawn
# expect CODE ARGS...: hl-appmgr ARGS exits CODE
expect() {
  local code=$1; shift
  "$APPMGR" "$@" > "$WORK/said" 2>&1; local rc=$?
  [ $rc -eq "$code" ] || fail "hl-appmgr $* exited $rc, not $code: $(cat "$WORK/said")"
}
# expect_table: one "CODE ARGS..." per line on standard input
expect_table() {
  local code args
  while read -r code args; do
    eval "expect $code $args"
  done
}
"$APPMGR" --help | grep -q "^Exit status:" || fail "no exit codes in --help"
expect_table <<TABLE
0 --version
2 bogus
2 run --restart sometimes -- true
2 run --log-level 9 -- true
2 run --unit '$WORK/missing.unit'
2 stop
1 status
TABLE
said=$("$APPMGR" run --restart sometimes -- true 2>&1)
[[ $said == *"--restart: sometimes"* ]] || fail "--restart's error: $said"

# Started with a soft descriptor limit below the hard one, which the manager raises for itself only.
ulimit -Sn 512
"$APPMGR" run --log-level 1 --unit "$WORK/steady.unit" --unit "$WORK/frozen.unit" --unit "$WORK/crasher.unit" \
  --unit "$WORK/quitter.unit" --unit "$WORK/broken.unit" --unit "$WORK/lazy.unit" --unit "$WORK/parent.unit" \
  > "$WORK/out" 2> "$WORK/log" &
MANAGER=$!

# Lifecycle of a normal start, in order.
wait_for 'steady\[[0-9]+\]: Ping' 30
pid=$(grep -oE 'steady\[[0-9]+\]: started' "$WORK/log" | head -1 | grep -oE '[0-9]+')
seq=$(grep -oE "steady\[$pid\]: (GetUpdateHandle|ReadyToInitialize|ReadyToShowUI|Ping)" "$WORK/log" | head -4 | sed 's/.*: //' | tr '\n' ' ')
[ "$seq" = "GetUpdateHandle ReadyToInitialize ReadyToShowUI Ping " ] || fail "steady's sequence: $seq"
soft() { awk '/^Max open files/ {print $4}' "/proc/$1/limits"; }
[ "$(soft "$pid")" = 512 ] || fail "the application's descriptor limit is $(soft "$pid"), not the 512 it was started with"
[ "$(soft "$MANAGER")" != 512 ] || [ "$(ulimit -Hn)" = 512 ] || fail "the manager kept its soft descriptor limit"

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

# A start that never reports ready is failed by its start_timeout_ms.
wait_for 'lazy\[[0-9]+\]: not ready within start_timeout_ms \(1000 ms\)' 10
wait_for 'lazy: not restarted' 10

# A Ping from a process that is not the application's is refused and logged; steady runs on.
(exec -a steady "$APP" run 200 > "$WORK/impostor" 2>&1) & impostor=$!
wait_for "steady\[$pid\]: Ping from pid $impostor refused" 10
kill "$impostor"
grep -q "Ping refused rc=0x90000005" "$WORK/impostor" || fail "the impostor's Ping was not refused"

# The verbs and their exit codes against the live manager.
expect_table <<TABLE
0 status steady
3 status crasher
4 status nobody
0 is-active steady
3 is-active quitter
4 is-active nobody
1 start crasher
4 stop nobody
4 command nobody volume 1
0 reset-failed crasher
TABLE
[ "$("$APPMGR" is-active quitter)" = exited ] || fail "is-active quitter prints its state"

# stop reaches the child's child; start runs it again; restart makes a new process; status NAME
# shows the uptime, last exit, restarts and the output.
wait_for 'parent\[[0-9]+\]: Ping' 30
grandchild=$(grep -oE '^child [0-9]+' "$WORK/out" | head -1 | cut -d' ' -f2)
kill -0 "$grandchild" || fail "no grandchild"
expect 0 stop parent
for _ in $(seq 50); do kill -0 "$grandchild" 2>/dev/null || break; sleep 0.1; done
kill -0 "$grandchild" 2>/dev/null && fail "stop left the child's child $grandchild running"
expect 3 is-active parent
expect 0 start parent
expect 0 is-active parent
before=$("$APPMGR" status --json parent | python3 -c 'import json,sys; print(json.load(sys.stdin)["applications"][0]["pid"])')
expect 0 restart parent
"$APPMGR" status parent > "$WORK/status"; rc=$?
[ $rc -eq 0 ] || fail "status parent exited $rc"
grep -qE '^ +State: running$' "$WORK/status" || fail "status parent: $(cat "$WORK/status")"
grep -qE "^ +PID: $before$" "$WORK/status" && fail "restart kept pid $before"
for line in 'Uptime: [0-9]+\.[0-9]{3}s' 'Restarts: 1' 'Last exit: exited with status 0' 'Last Ping: ' ; do
  grep -qE "^ +$line" "$WORK/status" || fail "status parent has no '$line': $(cat "$WORK/status")"
done
grep -qE '^child [0-9]+$' "$WORK/status" || fail "no output lines in status: $(cat "$WORK/status")"

# A manager stopped for 20 s wakes without blaming the healthy applications.
kill -STOP "$MANAGER"
sleep 20
kill -CONT "$MANAGER"
# (Whichever the manager sees first after SIGCONT, the late timer or the Pings that waited, nobody
# is blamed.)
sleep 3
grep -E "(steady|frozen|parent)\[[0-9]+\]: hung" "$WORK/log" | grep -qv "frozen\[$fpid\]" \
  && fail "the stall was blamed on an application"
expect 0 is-active steady

# status: text and JSON.
sleep 0.5
"$APPMGR" status > "$WORK/status"; [ $? -eq 3 ] || fail "status with failed applications must exit 3"
grep -qE '^steady +running +[0-9]+ +[0-9]+\.[0-9]{3}s +0$' "$WORK/status" || fail "status: $(cat "$WORK/status")"
"$APPMGR" status --json > "$WORK/status.json"
python3 -c '
import json, sys
apps = {a["name"]: a for a in json.load(sys.stdin)["applications"]}
assert apps["steady"]["state"] == "running" and apps["steady"]["ms_since_last_ping"] < 1500, apps
assert apps["frozen"]["restarts"] == 1, apps
assert apps["broken"]["state"] == "failed" and apps["quitter"]["state"] == "exited", apps
assert apps["lazy"]["state"] == "failed" and apps["lazy"]["last_exit"] == "exited with status 0", apps
' < "$WORK/status.json" || fail "status --json"

# SIGTERM ends the applications (they report StateChanged(-2)) and the manager with 0.
kill -TERM "$MANAGER"
wait "$MANAGER"; rc=$?
MANAGER=""
[ $rc -eq 0 ] || fail "the manager exited $rc"
grep -qE "steady\[$pid\]: StateChanged\(-2\)" "$WORK/log" || fail "no StateChanged(-2) from steady"
grep -qE "steady\[$pid\]: exited with status 0 \(stopped\)" "$WORK/log" || fail "steady did not exit cleanly"
expect 1 status

# An idle manager sleeps: at most one wakeup a second over all its threads.
{ echo "name=idle"; echo "program=$APP"; echo "argument=run"; echo "argument=60000"
  echo "watchdog_interval_ms=120000"; } > "$WORK/idle.unit"
"$APPMGR" run --unit "$WORK/idle.unit" > "$WORK/out" 2> "$WORK/log" &
MANAGER=$!
wait_for 'idle\[[0-9]+\]: ReadyToShowUI' 30
sleep 1
switches() { cat /proc/"$MANAGER"/task/*/status | awk '/^(non)?voluntary_ctxt_switches/ {n += $2} END {print n}'; }
first=$(switches); sleep 4; last=$(switches)
echo "idle manager: $(( last - first )) context switches in 4 s"
[ $(( last - first )) -le 4 ] || fail "an idle manager woke $(( last - first )) times in 4 s"
echo "PASS"
