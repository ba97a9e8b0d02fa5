#!/usr/bin/env bash
# hl-ask against a real decision server process: approve, decline, server failure, odd answer,
# peer gone, caller's timeout, service missing, and waiting for a service that comes later; each
# ending with its exit code.
#   hl_ask_test.sh HL_ASK DECISION_SERVER
set -uo pipefail
ASK=$1
SERVER=$2
WORK=$(mktemp -d)
export HL_RUNTIME_DIR="$WORK/rt"
PEER=""
fail() { echo "FAIL: $*" >&2; [ -n "$PEER" ] && kill "$PEER" 2>/dev/null; exit 1; }
cleanup() { [ -n "$PEER" ] && kill "$PEER" 2>/dev/null; wait 2>/dev/null; rm -rf "$WORK"; }
trap cleanup EXIT

start() {
  "$SERVER" "$1" > "$WORK/ready" &
  PEER=$!
  for _ in $(seq 100); do grep -q ready "$WORK/ready" 2>/dev/null && return; sleep 0.1; done
  fail "the decision server ($1) did not come up"
}
stop() { kill "$PEER" 2>/dev/null; wait "$PEER" 2>/dev/null; PEER=""; }
# expect CODE STDOUT STDERR_PATTERN [ARGS...]
expect() {
  local code=$1 out=$2 err=$3; shift 3
  "$ASK" "$@" > "$WORK/out" 2> "$WORK/err"
  local rc=$?
  [ $rc -eq "$code" ] || fail "hl-ask $* exited $rc, not $code ($(cat "$WORK/err"))"
  [ "$(cat "$WORK/out")" = "$out" ] || fail "hl-ask $* printed '$(cat "$WORK/out")'"
  if [ "$err" = "-" ]; then [ ! -s "$WORK/err" ] || fail "hl-ask $* said $(cat "$WORK/err")"; return; fi
  grep -qE -- "$err" "$WORK/err" || fail "hl-ask $* said '$(cat "$WORK/err")', not /$err/"
}

"$ASK" --help | grep -q "^  5    no decision within --timeout" || fail "--help has no exit-code table"
"$ASK" --version | grep -qx "hl-ask [0-9]*\.[0-9]*\.[0-9]*" || fail "--version"
expect 2 "" "--timeout" --timeout
expect 2 "" "-1" --timeout -1
expect 2 "" "not expected: approve" approve
grep -qx "Try 'hl-ask --help' for more information." "$WORK/err" || fail "no pointer to --help"
expect 3 "" "^hl-ask: service not found: nothing publishes hl.access_arbiter.AccessArbiter.accessArbiter"
# Waiting for a service that never comes: one line says so on a terminal, none in a script's log.
script -qec "$ASK --wait-for-service 300" /dev/null < /dev/null > "$WORK/terminal"
[ $? -eq 3 ] && grep -q "waiting up to 300 ms" "$WORK/terminal" || fail "no waiting line on a terminal: $(cat "$WORK/terminal")"
expect 3 "" "^hl-ask: service not found" --wait-for-service 300
! grep -q waiting "$WORK/err" || fail "a waiting line without a terminal"
start approve;  expect 0 approved -;  stop
expect 3 "" "service not found: the decision service's server does not answer"
start decline;  expect 1 declined -;  stop
start fail;     expect 4 "" "^hl-ask: server failure";  expect 4 "" "server failure";  stop
start odd;      expect 4 "" "unexpected answer 7";  stop
start die;      expect 3 "" "^hl-ask: peer gone";  stop
start hang
before=$(date +%s%N)
expect 5 "" "^hl-ask: timed out after 700 ms" --timeout=700
elapsed=$(( ($(date +%s%N) - before) / 1000000 ))
[ $elapsed -ge 650 ] || fail "gave up after $elapsed ms"
stop
# The service comes up 1.5 s after the caller starts waiting.
( sleep 1.5; exec "$SERVER" approve > /dev/null ) &
PEER=$!
expect 0 approved - --wait-for-service 20000
stop
echo PASS
