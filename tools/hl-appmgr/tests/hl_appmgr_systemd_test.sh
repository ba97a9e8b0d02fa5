#!/usr/bin/env bash
# hl-appmgr as a systemd service, with real processes.
#   notify:  standard error is a file that JOURNAL_STREAM names, NOTIFY_SOCKET a datagram socket of
#            the test, the watchdog 600 ms. The manager's lines carry their priority and no time
#            stamp; it sends READY=1, STATUS= on changes only, and WATCHDOG=1 until an application
#            reaches its start limit, none after; the applications never see NOTIFY_SOCKET,
#            WATCHDOG_USEC or WATCHDOG_PID.
#   journal: a stand-in for journald listens on /run/systemd/journal/stdout (only on a machine that
#            has none there: exit 77 otherwise). Each start of an application writes to a stream of
#            its own, opened under the application's name, in journal lines.
#   hl_appmgr_systemd_test.sh HL_APPMGR TEST_APP notify|journal
set -uo pipefail
APPMGR=$1
APP=$2
MODE=$3
WORK=$(mktemp -d)
export HL_RUNTIME_DIR="$WORK/rt"
JOURNALD=/run/systemd/journal/stdout
MANAGER=""
LISTENER=""
CREATED=""
OWN_SOCKET=""
fail() {
  echo "FAIL: $*" >&2
  for f in "$WORK"/log "$WORK"/notify.log "$WORK"/stream.*; do [ -f "$f" ] && { echo "--- $f" >&2; cat "$f" >&2; }; done
  exit 1
}
cleanup() {
  [ -n "$MANAGER" ] && kill "$MANAGER" 2>/dev/null
  [ -n "$LISTENER" ] && kill "$LISTENER" 2>/dev/null
  wait 2>/dev/null
  [ -n "$OWN_SOCKET" ] && rm -f "$JOURNALD"
  [ -n "$CREATED" ] && rmdir $CREATED
  rm -rf "$WORK"
}
trap cleanup EXIT

wait_for() { # wait_for PATTERN SECONDS FILE...
  local pattern=$1 seconds=$2; shift 2
  local deadline=$((SECONDS + seconds))
  until cat "$@" 2>/dev/null | grep -qE "$pattern"; do
    [ $SECONDS -ge $deadline ] && fail "no line matching '$pattern' in $* within $seconds s"
    sleep 0.1
  done
}
unit() { # unit NAME MODE [extra lines...]
  local name=$1 mode=$2; shift 2
  { echo "name=$name"; echo "program=$APP"; echo "argument=$mode"; echo "argument=300"
    printf '%s\n' "$@"; } > "$WORK/$name.unit"
}
# start_manager [VAR=VALUE...]: hl-appmgr with standard error in $WORK/log, which JOURNAL_STREAM
# names, and WATCHDOG_PID naming the manager itself.
start_manager() {
  : > "$WORK/log"
  local stream
  stream=$(stat -c '%d:%i' "$WORK/log")
  ( export JOURNAL_STREAM="$stream" "$@"; [ -n "${WATCHDOG_USEC:-}" ] && export WATCHDOG_PID=$BASHPID
    exec "$APPMGR" run --log-level 1 --unit "$WORK/steady.unit" --unit "$WORK/crasher.unit" ) \
    >> "$WORK/out" 2>> "$WORK/log" &
  MANAGER=$!
}
stop_manager() {
  kill -TERM "$MANAGER"
  wait "$MANAGER"; local rc=$?
  MANAGER=""
  [ $rc -eq 0 ] || fail "the manager exited $rc"
}
# A line of the manager: priority, level, tag, thread, and no time stamp before them.
manager_line() { echo "^<$1>$2 +\[APPMGR\] [0-9]+ \S+ \S+: $3"; }

if [ "$MODE" = notify ]; then
  python3 -c '
import socket, sys
s = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
s.bind(sys.argv[1])
with open(sys.argv[2], "a") as out:
    while True:
        out.write(s.recv(4096).decode().replace("\n", "|") + "\n")
        out.flush()
' "$WORK/notify" "$WORK/notify.log" &
  LISTENER=$!
  for _ in $(seq 100); do [ -S "$WORK/notify" ] && break; sleep 0.05; done
  unit steady run "argument=$WORK/steady.env"
  unit crasher crash "start_limit=2"
  had_journald=0; [ -e "$JOURNALD" ] && had_journald=1
  start_manager NOTIFY_SOCKET="$WORK/notify" WATCHDOG_USEC=600000

  wait_for "STATUS=crasher failed: start limit reached" 60 "$WORK/notify.log"
  # Four half-intervals without a WATCHDOG=1 after the failure.
  sleep 1.2
  stop_manager
  sleep 0.2
  grep -qx "READY=1|STATUS=0 of 2 applications running" "$WORK/notify.log" || fail "no READY=1 with a status first"
  grep -qE "^STATUS=[12] of 2 applications running$" "$WORK/notify.log" || fail "no status of running applications"
  tail -1 "$WORK/notify.log" | grep -qx "STOPPING=1|STATUS=stopping" || fail "STOPPING=1 is not the last message"
  python3 - "$WORK/notify.log" <<'PY' || fail "notify messages out of order"
import sys
messages = open(sys.argv[1]).read().splitlines()
failed = messages.index("STATUS=crasher failed: start limit reached")
assert "WATCHDOG=1" in messages[:failed], messages
assert "WATCHDOG=1" not in messages[failed:], messages
statuses = [m for m in messages if m.startswith("STATUS=")]
assert all(a != b for a, b in zip(statuses, statuses[1:])), statuses
PY
  printf 'NOTIFY_SOCKET=-\nWATCHDOG_USEC=-\nWATCHDOG_PID=-\n' | cmp -s - <(head -3 "$WORK/steady.env") ||
    fail "the application got systemd's variables: $(cat "$WORK/steady.env")"

  LOG="$WORK/log"
  ! grep -E "\[APPMGR\]" "$LOG" | grep -qvE "$(manager_line '[0-7]' '[A-Z]+' '')" || fail "a line without its priority"
  grep -qE "$(manager_line 6 INFO 'steady\[[0-9]+\]: started')" "$LOG" || fail "a start is not <6>"
  grep -qE "$(manager_line 7 DEBUG 'steady\[[0-9]+\]: Ping$')" "$LOG" || fail "a Ping is not <7>"
  grep -qE "$(manager_line 4 WARNING 'crasher\[[0-9]+\]: killed by signal 6 \(abnormal exit\)')" "$LOG" ||
    fail "a crash is not <4>"
  grep -qE "$(manager_line 4 WARNING 'crasher: restarting in 500 ms')" "$LOG" || fail "a restart is not <4>"
  grep -qE "$(manager_line 3 ERROR 'crasher: start limit of 2 starts')" "$LOG" || fail "the start limit is not <3>"
  [ "$(grep -cE "$(manager_line 3 ERROR 'crasher failed: start limit reached: no more WATCHDOG=1')" "$LOG")" -eq 1 ] ||
    fail "the end of the watchdog is not logged once at <3>"
  grep -qE "$(manager_line 6 INFO 'steady\[[0-9]+\]: exited with status 0 \(stopped\)')" "$LOG" || fail "a stop is not <6>"
  if [ $had_journald -eq 0 ]; then
    # No journald: one warning, and the applications write journal lines to the manager's stream.
    [ "$(grep -cE "$(manager_line 4 WARNING 'no journal stream of their own')" "$LOG")" -eq 1 ] ||
      fail "no single warning about the missing journal streams"
    grep -qE '^<4>WARNING +\[HL\] [0-9]+ \S+ main: crasher: aborting as asked$' "$LOG" ||
      fail "the application's warning is not a journal line"
  fi
  echo "PASS"
  exit 0
fi

[ "$MODE" = journal ] || { echo "usage: $0 HL_APPMGR TEST_APP notify|journal" >&2; exit 2; }
if [ -e "$JOURNALD" ]; then
  echo "SKIP: $JOURNALD exists (a journald runs here)"
  exit 77
fi
# The directories made here are removed again, innermost first.
for dir in /run/systemd /run/systemd/journal; do
  [ -d "$dir" ] && continue
  mkdir "$dir" 2>/dev/null || { echo "SKIP: can't make $dir"; exit 77; }
  CREATED="$dir $CREATED"
done
OWN_SOCKET=1
python3 -c '
import socket, sys, threading
server = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
server.bind(sys.argv[1])
server.listen(16)
def drain(connection, path):
    with open(path, "wb") as out:
        while data := connection.recv(65536):
            out.write(data)
            out.flush()
count = 0
while True:
    connection, _ = server.accept()
    count += 1
    threading.Thread(target=drain, args=(connection, "%s.%d" % (sys.argv[2], count)), daemon=True).start()
' "$JOURNALD" "$WORK/stream" 2>> "$WORK/listener.log" &
LISTENER=$!
for _ in $(seq 100); do [ -S "$JOURNALD" ] && break; sleep 0.05; done
[ -S "$JOURNALD" ] || fail "the stand-in for journald does not listen: $(cat "$WORK/listener.log")"
unit steady run "argument=$WORK/steady.env"
unit crasher crash "start_limit=1"
start_manager
wait_for "crasher: start limit of 1 starts" 60 "$WORK/log"
wait_for "\[HL\] .*steady: run, Ping every 300 ms" 10 "$WORK"/stream.*
stop_manager

# One stream per start: the header sd_journal_stream_fd sends (identifier, unit, priority 6, level
# prefixes read, no forwarding), then the application's own lines, in journal form.
streams=$(ls "$WORK"/stream.* | wc -l)
[ "$streams" -eq 2 ] || fail "$streams streams for two starts"
python3 - "$WORK" <<'PY' || fail "the applications' streams"
import glob, re, sys
seen = {}
for path in glob.glob(sys.argv[1] + "/stream.*"):
    lines = open(path).read().split("\n")
    assert lines[1:7] == ["", "6", "1", "0", "0", "0"], (path, lines[:7])
    seen[lines[0]] = lines[7:]
assert sorted(seen) == ["crasher", "steady"], seen
line = r"<%d>%s +\[HL\] \d+ \S+ main: %s"
assert any(re.fullmatch(line % (6, "INFO", "steady: run, Ping every 300 ms"), l) for l in seen["steady"]), seen
assert not any("crasher" in l for l in seen["steady"]), seen
assert any(re.fullmatch(line % (6, "INFO", "crasher: crash, Ping every 300 ms"), l) for l in seen["crasher"]), seen
assert any(re.fullmatch(line % (4, "WARNING", "crasher: aborting as asked"), l) for l in seen["crasher"]), seen
PY
! grep -q "\[HL\]" "$WORK/log" || fail "an application's line in the manager's stream"
! grep -q "no journal stream" "$WORK/log" || fail "a warning about the journal streams"
own=$(grep '^JOURNAL_STREAM=' "$WORK/steady.env" | cut -d= -f2)
[ -n "$own" ] && [ "$own" != "-" ] && [ "$own" != "$(stat -c '%d:%i' "$WORK/log")" ] ||
  fail "the application's JOURNAL_STREAM is '$own'"
echo "PASS"
