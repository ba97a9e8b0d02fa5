#!/usr/bin/env bash
# hl-ipc against a running test peer: list, a call with fields and arena, the exit codes.
# Usage: hl_ipc_peer_test.sh HL_IPC PEER
set -uo pipefail
hl_ipc=$1
base=${HL_RUNTIME_DIR:-/tmp}
mkdir -p "$base"
export HL_RUNTIME_DIR=$(mktemp -d "$base/hl-ipc-XXXXXX")
failures=0
expect() { # description, expected exit code, command...; the output is left in $out
    local what=$1 code=$2; shift 2
    out=$("$@" 2>&1); local got=$?
    [ $got -eq "$code" ] || { echo "FAILED: $what exits $got, not $code"; failures=$((failures + 1)); }
}
shows() { grep -q -- "$1" <<<"$out" || { echo "FAILED: no '$1' in: $out"; failures=$((failures + 1)); }; }

"$2" serve ipc-peer > "$HL_RUNTIME_DIR/peer.out" &
trap 'kill -9 $! 2>/dev/null; rm -rf "$HL_RUNTIME_DIR"' EXIT
for _ in $(seq 200); do grep -q ready "$HL_RUNTIME_DIR/peer.out" && break; sleep 0.05; done

mkdir -p "$HL_RUNTIME_DIR/registry"
printf 'server=ipc-peer\nendpoint=echo\npid=999999999\n' > "$HL_RUNTIME_DIR/registry/hl.test.Echo.echo"
expect "list" 0 "$hl_ipc" list; shows "ipc-peer live"; shows "hl.test.Echo.echo -> server ipc-peer, endpoint echo, pid 999999999 (gone)"
expect "list --json" 0 "$hl_ipc" list --json
python3 -c '
import json, sys
listing = json.loads(sys.argv[1])
assert listing["runtime_directory"] == sys.argv[2], listing
assert listing["types"] == [{"type": "hl.test.Echo.echo", "server": "ipc-peer", "endpoint": "echo",
                             "pid": 999999999, "pid_alive": False}], listing
assert listing["servers"] == [{"name": "ipc-peer", "state": "live"}], listing
' "$out" "$HL_RUNTIME_DIR" || { echo "FAILED: list --json gave: $out"; failures=$((failures + 1)); }
expect "list with a stray argument" 1 "$hl_ipc" list --jsn
expect "call" 0 "$hl_ipc" call ipc-peer echo - 0 "0x0102 03:04" --arena 6869
shows "fields (4 bytes): 01020304"; shows "arena (2 bytes): 6869"
expect "call with hex over two lines" 0 "$hl_ipc" call ipc-peer echo - 0 "$(printf '01020304\n  05060708')"
shows "fields (8 bytes): 01020304 05060708"
expect "server failure" 4 "$hl_ipc" call ipc-peer echo 1 8 -
expect "absent server" 2 "$hl_ipc" call nobody echo 1 0 -; shows "0x90000013"
expect "timed-out call" 3 "$hl_ipc" call ipc-peer echo 1 2 e8030000 --timeout 100
expect "bad hex" 1 "$hl_ipc" call ipc-peer echo 1 0 zz
expect "call --help" 0 "$hl_ipc" call --help; shows "Exit codes"
echo "$failures failed"
test $failures -eq 0
