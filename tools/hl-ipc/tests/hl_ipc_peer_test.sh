#!/usr/bin/env bash
# hl-ipc against a running test peer: list, a call with fields and arena, the exit codes.
# Usage: hl_ipc_peer_test.sh HL_IPC PEER
set -uo pipefail
hl_ipc=$1
peer=$2
base=${HL_RUNTIME_DIR:-/tmp}
mkdir -p "$base"
export HL_RUNTIME_DIR=$(mktemp -d "$base/hl-ipc-XXXXXX")
failures=0
passes=0
check() { # description, command...
    local what=$1; shift
    if "$@"; then echo "ok: $what"; passes=$((passes + 1)); else echo "FAILED: $what"; failures=$((failures + 1)); fi
}

"$peer" serve ipc-peer > "$HL_RUNTIME_DIR/peer.out" &
peer_pid=$!
trap 'kill -9 $peer_pid 2>/dev/null; rm -rf "$HL_RUNTIME_DIR"' EXIT
for _ in $(seq 200); do grep -q ready "$HL_RUNTIME_DIR/peer.out" && break; sleep 0.05; done

out=$("$hl_ipc" list); code=$?
check "list exits 0" test $code -eq 0
check "list shows the live server" grep -q "ipc-peer live" <<<"$out"

out=$("$hl_ipc" call ipc-peer echo - 0 "01020304" --arena 6869); code=$?
check "call exits 0" test $code -eq 0
check "call prints the fields" grep -q "fields (4 bytes): 01020304" <<<"$out"
check "call prints the arena" grep -q "arena (2 bytes): 6869" <<<"$out"

"$hl_ipc" call ipc-peer echo 1 8 - > /dev/null; code=$?
check "server failure exits 4" test $code -eq 4
out=$("$hl_ipc" call nobody echo 1 0 -); code=$?
check "absent server exits 2" test $code -eq 2
check "absent server prints not found" grep -q "0x90000013" <<<"$out"
"$hl_ipc" call ipc-peer echo 1 2 e8030000 --timeout 100 > /dev/null; code=$?
check "timed-out call exits 3" test $code -eq 3
"$hl_ipc" call ipc-peer echo 1 0 zz > /dev/null 2>&1; code=$?
check "bad hex exits 1" test $code -eq 1
check "call --help documents exit codes" bash -c "\"$hl_ipc\" call --help | grep -q 'Exit codes'"

echo "$passes passed, $failures failed"
test $failures -eq 0
