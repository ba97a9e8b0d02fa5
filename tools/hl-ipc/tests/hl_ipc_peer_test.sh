#!/usr/bin/env bash
# hl-ipc against real servers: list and raw calls against the platform's test peer, introspect,
# typed calls by method name against hl-settingsd, GetUserDecision answered by a click in a hosted
# session, and the exit-code table.
# Usage: hl_ipc_peer_test.sh BIN_DIR PEER (BIN_DIR holds hl-ipc, hl-settingsd and hl-session)
set -uo pipefail
bin=$1
hl_ipc=$bin/hl-ipc
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
peer=$!
"$bin/hl-settingsd" MSmgr > "$HL_RUNTIME_DIR/settingsd.out" 2>&1 &
settingsd=$!
trap 'kill -9 $peer $settingsd 2>/dev/null; rm -rf "$HL_RUNTIME_DIR"' EXIT
for _ in $(seq 200); do grep -q ready "$HL_RUNTIME_DIR/peer.out" && grep -q ready "$HL_RUNTIME_DIR/settingsd.out" && break; sleep 0.05; done

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
assert listing["servers"] == [{"name": "hl.settings_manager.MSmgr", "state": "live"}, {"name": "ipc-peer", "state": "live"}], listing
' "$out" "$HL_RUNTIME_DIR" || { echo "FAILED: list --json gave: $out"; failures=$((failures + 1)); }
expect "call" 0 "$hl_ipc" call --raw ipc-peer echo - 0 "0x0102 03:04" --arena=6869
shows "fields (4 bytes): 01020304"; shows "arena (2 bytes): 6869"
expect "call with hex over two lines" 0 "$hl_ipc" call ipc-peer echo --raw - 0 "$(printf '01020304\n  05060708')"
shows "fields (8 bytes): 01020304 05060708"

# The described interfaces, and typed calls by name against the settings service.
expect "introspect" 0 "$hl_ipc" introspect; shows "^  GetUserDecision (mid 0): () -> (u8 decision)$"
shows "^  Subscribe (mid 2): (u64 cid, bytes\[512\] path) -> (u64 sid, i32 rc)$"
expect "introspect --json of a published type" 0 "$hl_ipc" introspect --json hl.settings_manager.NkISM.x
python3 -c '
import json, sys
[nkism] = json.loads(sys.argv[1])
delete = [m for m in nkism["methods"] if m["name"] == "Delete"][0]
assert (nkism["interface"], delete["mid"]) == ("hl.settings_manager.NkISM", 7), nkism
assert delete["inputs"] == [{"name": "path", "type": "bytes[512]", "offset": 24}], delete
' "$out" || { echo "FAILED: introspect --json gave: $out"; failures=$((failures + 1)); }
while IFS='|' read -r what json answer; do
    expect "$what" 0 "$hl_ipc" call hl.settings_manager.MSmgr NkISM "${json%% *}" "${json#* }"
    [ "$out" = "$answer" ] || { echo "FAILED: $what answered $out, not $answer"; failures=$((failures + 1)); }
done <<'TABLE'
attributes of a setting|GetAttrib {"path": "locale/language/"}|{"attr":0,"rc":0}
attributes of no setting|GetAttrib {"path": {"hex": "6e6f2f"}}|{"attr":0,"rc":-2147483572}
a delete|hl.settings_manager.NkISM.Delete {"path": "locale/"}|{"rc":0}
TABLE

# The exit-code table, each row with what it says on standard error (data only on standard output).
while IFS='|' read -r what code message args; do
    read -ra argv <<<"$args"
    expect "$what" "$code" "$hl_ipc" "${argv[@]}"
    [ -z "$message" ] || says "$message"
    [ "$code" -eq 0 ] || [ "$code" -eq 5 ] || [ -z "$out" ] || { echo "FAILED: $what wrote on standard output: $out"; failures=$((failures + 1)); }
done <<'TABLE'
absent server|3|0x90000013|call --raw nobody echo 1 0 -
absent server, typed|3|0x90000013|call nobody NkISM Cancel {"id":1}
unknown interface|6|bogus|introspect bogus
unknown method|2|has no method 'Frob'|call hl.settings_manager.MSmgr NkISM Frob
no interface for the method|2|no described interface|call ipc-peer echo Frob
a missing field|2|needs the field "path"|call hl.settings_manager.MSmgr NkISM Delete {}
an unknown field|2|no input field "paht"|call hl.settings_manager.MSmgr NkISM Delete {"path":"a/","paht":1}
a field out of range|2|"attr" of SetAttrib takes an integer from 0 to 255|call hl.settings_manager.MSmgr NkISM SetAttrib {"path":"a/","attr":256}
bad JSON|2|is no JSON document|call hl.settings_manager.MSmgr NkISM Delete {"path"
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
# GetUserDecision by name in a hosted session, answered by a real click on Approve.
if [ -x "$bin/hl-session" ] && command -v xdotool > /dev/null; then
    cat > "$HL_RUNTIME_DIR/in-session.sh" <<'IN'
set -uo pipefail
source "$2"
hl-ipc call accessArbiter_id hl.access_arbiter.AccessArbiter.accessArbiter GetUserDecision --timeout=0 > "$1" &
caller=$!
click_dialog 234 110
wait $caller
IN
    env -u HL_RUNTIME_DIR PATH="$bin:$PATH" QT_QUICK_BACKEND=software "$bin/hl-session" --xvfb --quiet --directory "$HL_RUNTIME_DIR/session" -- \
        bash "$HL_RUNTIME_DIR/in-session.sh" "$HL_RUNTIME_DIR/decision" "$(dirname "$0")/../../hosted-session/tests/click_dialog.sh"
    code=$?; echo "GetUserDecision in a session: $(cat "$HL_RUNTIME_DIR/decision")"
    [ $code -eq 0 ] && [ "$(cat "$HL_RUNTIME_DIR/decision")" = '{"decision":1}' ] ||
        { echo "FAILED: GetUserDecision in a session exits $code with '$(cat "$HL_RUNTIME_DIR/decision")'"; failures=$((failures + 1)); }
else
    echo "FAILED: no hl-session or xdotool for the session case"; failures=$((failures + 1))
fi

expect "--version" 0 "$hl_ipc" --version; shows "^hl-ipc [0-9]"
expect "call --help" 0 "$hl_ipc" call --help; shows "Exit status:"; shows "5 *call: the server failed"
echo "$failures failed"
test $failures -eq 0
