#!/usr/bin/env bash
# hl-session as a person runs it: a resident session on a private Xvfb that another shell reaches
# through the printed HL_RUNTIME_DIR (hl-appmgr's verbs stop, start and restart the program there)
# and that Ctrl-C ends in order, leaving nothing behind; and its
# documented exit statuses for a usage error, a session that can't start and a command that can't run.
#   hl_session_test.sh BIN_DIR
set -uo pipefail
BIN=$1
WORK=$(mktemp -d)
SESSION=""
fail() { echo "FAIL: $*" >&2; cat "$WORK/err" >&2 2>/dev/null; exit 1; }
cleanup() { [ -n "$SESSION" ] && kill -KILL "$SESSION" 2>/dev/null; rm -rf "$WORK"; }
trap cleanup EXIT

"$BIN/hl-session" --version | grep -q '^hl-session [0-9]' || fail "--version"
"$BIN/hl-session" --bogus 2> /dev/null; [ $? -eq 2 ] || fail "a usage error does not exit 2"
"$BIN/hl-session" --xvfb -q --program /nonexistent/program -- true 2> "$WORK/err"
[ $? -eq 125 ] || fail "a program that can't start does not exit 125"
grep -q "did not report ReadyToShowUI" "$WORK/err" || fail "no reason for the failed start"
"$BIN/hl-session" --xvfb -q -- /nonexistent/command 2> "$WORK/err"
[ $? -eq 127 ] || fail "a command that can't run does not exit 127"

# A resident session, reached from outside.
"$BIN/hl-session" --xvfb -q > "$WORK/out" 2> "$WORK/err" &
SESSION=$!
for _ in $(seq 600); do grep -q '^DISPLAY=' "$WORK/out" && break; sleep 0.1; done
line=$(head -1 "$WORK/out")
runtime=${line##*HL_RUNTIME_DIR=}
[ -d "$runtime" ] || fail "the printed runtime directory '$runtime' is not there"
HL_RUNTIME_DIR="$runtime" "$BIN/hl-appmgr" status > "$WORK/status" || fail "hl-appmgr status failed"
grep -q "AccessArbiter" "$WORK/status" || fail "the status names no AccessArbiter: $(cat "$WORK/status")"
# The manager's verbs on the live program: stop, is-active, start, restart, status with its output.
appmgr() { HL_RUNTIME_DIR="$runtime" "$BIN/hl-appmgr" "$@"; }
pid=$(appmgr status --json AccessArbiter | python3 -c 'import json,sys; print(json.load(sys.stdin)["applications"][0]["pid"])')
appmgr stop AccessArbiter || fail "stop exited $?"
kill -0 "$pid" 2>/dev/null && fail "the program $pid outlived its stop"
[ "$(appmgr is-active AccessArbiter)" = stopped ] || fail "is-active after stop"
appmgr status AccessArbiter > /dev/null; [ $? -eq 3 ] || fail "status of a stopped program does not exit 3"
appmgr start AccessArbiter || fail "start exited $?"
appmgr restart AccessArbiter || fail "restart exited $?"
appmgr reset-failed AccessArbiter || fail "reset-failed exited $?"
appmgr status AccessArbiter > "$WORK/status" || fail "status of the restarted program exited $?"
grep -qE '^ +Restarts: 1$' "$WORK/status" || fail "the restart is not counted: $(cat "$WORK/status")"
grep -q "AccessArbiter is ready" "$WORK/status" || fail "status shows no output lines: $(cat "$WORK/status")"
kill -INT "$SESSION"
wait "$SESSION"; rc=$?
SESSION=""
[ $rc -eq 0 ] || fail "Ctrl-C ended the session with $rc, not 0"
[ -e "$runtime" ] && fail "the private session directory outlived the session"
pgrep -f "$runtime" > /dev/null && fail "a process of the session outlived it: $(pgrep -af "$runtime")"
echo PASS
