#!/usr/bin/env bash
# hl-ipc against a running test peer: list, a call with fields and arena, the exit codes.
# Usage: hl_ipc_peer_test.sh HL_IPC PEER
set -uo pipefail
hl_ipc=$1
base=${HL_RUNTIME_DIR:-/tmp}
mkdir -p "$base"
export HL_RUNTIME_DIR=$(mktemp -d "$base/hl-ipc-XXXXXX")
failures=0
expect() { # description, expected exit code, command...; standard output in $out, standard error in $err
    local what=$1 code=$2; shift 2
    out=$("$@" 2>"$HL_RUNTIME_DIR/err"); local got=$?
    err=$(cat "$HL_RUNTIME_DIR/err")
    [ $got -eq "$code" ] || { echo "FAILED: $what exits $got, not $code (stderr: $err)"; failures=$((failures + 1)); }
}
shows() { grep -q -- "$1" <<<"$out" || { echo "FAILED: no '$1' in: $out"; failures=$((failures + 1)); }; }
says() { grep -q -- "$1" <<<"$err" || { echo "FAILED: no '$1' in stderr: $err"; failures=$((failures + 1)); }; }

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
expect "call" 0 "$hl_ipc" call --raw ipc-peer echo - 0 "0x0102 03:04" --arena=6869
shows "fields (4 bytes): 01020304"; shows "arena (2 bytes): 6869"
expect "call with hex over two lines" 0 "$hl_ipc" call ipc-peer echo --raw - 0 "$(printf '01020304\n  05060708')"
shows "fields (8 bytes): 01020304 05060708"

# The exit-code table, each row with what it says on standard error (data only on standard output).
while IFS='|' read -r what code message args; do
    read -ra argv <<<"$args"
    expect "$what" "$code" "$hl_ipc" "${argv[@]}"
    [ -z "$message" ] || says "$message"
    [ "$code" -eq 0 ] || [ "$code" -eq 5 ] || [ -z "$out" ] || { echo "FAILED: $what wrote on standard output: $out"; failures=$((failures + 1)); }
done <<'TABLE'
absent server|3|0x90000013|call --raw nobody echo 1 0 -
timed-out call|4|0xfffffff5|call --raw ipc-peer echo 1 2 e8030000 --timeout=100
server failure|5|failure flag|call --raw ipc-peer echo 1 8 -
no command|2|no command given|
unknown command|2|frob|frob
list with a stray option|2|--jsn|list --jsn
bad hex|2|HEX 'zz'|call --raw ipc-peer echo 1 0 zz
bad method id|2|MID '70000'|call --raw ipc-peer echo 1 70000 -
raw call missing its hex|2|IID MID HEX|call --raw ipc-peer echo 1 0
response room below a header|2|--response-room|call --raw ipc-peer echo 1 0 - --response-room 8
TABLE
expect "--version" 0 "$hl_ipc" --version; shows "^hl-ipc [0-9]"
expect "call --help" 0 "$hl_ipc" call --help; shows "Exit status:"; shows "5 *call: the server answered"
echo "$failures failed"
test $failures -eq 0
