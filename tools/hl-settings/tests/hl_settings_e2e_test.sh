#!/usr/bin/env bash
# hl-settings against a settings service in a process of its own, over the hosted platform: round
# trips of every type, delete, reset, tree --json of a nested tree, a dump loaded into an empty
# persistent service, strings that aren't UTF-8, monitor seeing another process's write, and the
# exit-code table.
# Usage: hl_settings_e2e_test.sh HL_SETTINGS SERVICE_PROGRAM [SERVICE_ARGS...]
#   The service program is started as: SERVICE_PROGRAM SERVICE_ARGS... (the arguments name the
#   service hl.settings_manager.MSmgr); it must print a line with "ready" once it serves.
set -uo pipefail
tool=$1; shift
daemon=$1
base=${HL_RUNTIME_DIR:-/tmp}
mkdir -p "$base"
export HL_RUNTIME_DIR=$(mktemp -d "$base/hl-settings-XXXXXX")
export XDG_STATE_HOME=$HL_RUNTIME_DIR/state
failures=0
fail() { echo "FAILED: $*"; failures=$((failures + 1)); }
expect() { # description, expected exit code, command...; output in $out, standard error in $err
    local what=$1 code=$2; shift 2
    out=$("$@" 2>"$HL_RUNTIME_DIR/err"); local got=$?
    err=$(cat "$HL_RUNTIME_DIR/err")
    [ $got -eq "$code" ] || fail "$what exits $got, not $code (stderr: $err)"
}
is() { [ "$out" = "$1" ] || fail "expected '$1', got '$out'"; }
says() { grep -q -- "$1" <<<"$err" || fail "no '$1' in stderr: $err"; }

pids=()
trap 'for p in "${pids[@]}"; do kill -9 "$p" 2>/dev/null; done; rm -rf "$HL_RUNTIME_DIR"' EXIT

# Without a service: the tool says so and exits 3 (and doesn't wait minutes).
expect "get without a service" 3 "$tool" --wait 0 get locale/language; says "can't be reached"

"$@" > "$HL_RUNTIME_DIR/service.out" 2>&1 &
pids+=($!)
for _ in $(seq 200); do grep -q ready "$HL_RUNTIME_DIR/service.out" && break; sleep 0.05; done

# A fresh non-persistent service holds its defaults; its short name reaches it too.
expect "get a default" 0 "$tool" get locale/language; is "en-US"
expect "get by the short name" 0 "$tool" --service MSmgr get locale/language; is "en-US"

# Round trips: what set writes, get prints in the same form.
while read -r type value; do
    expect "set $type" 0 "$tool" set "rt/$type" "$value" --type "$type"
    expect "get $type" 0 "$tool" get "rt/$type"; is "$value"
done <<'TABLE'
bool true
i8 -128
i16 -32768
i32 -2147483648
u8 255
u16 65535
u32 4294967295
i64 -9223372036854775808
u64 18446744073709551615
double 0.1
bytes 00 01 fe ff
timestamp 1700000000123
TABLE
expect "set without --type" 0 "$tool" set rt/text "ru RU, кириллица"
expect "get string" 0 "$tool" get rt/text; is "ru RU, кириллица"
expect "a value that begins with a dash" 0 "$tool" set rt/dash -- --x
expect "get it" 0 "$tool" get rt/dash; is "--x"
expect "get --json of an i8" 0 "$tool" get rt/i8 --json
python3 -c 'import json, sys; d = json.loads(sys.argv[1]); assert d == {"path": "rt/i8/", "type": "i8", "flag": False, "value": -128}, d' "$out" ||
    fail "get --json: $out"
expect "overwrite with another type" 0 "$tool" set rt/i8 7 --type u32
expect "get the new type" 0 "$tool" get rt/i8 --json
python3 -c 'import json, sys; d = json.loads(sys.argv[1]); assert (d["type"], d["value"]) == ("u32", 7), d' "$out" ||
    fail "overwrite: $out"

# Delete, then the path is gone: exit 1, and the same for a delete of it.
expect "delete" 0 "$tool" delete rt/bool
expect "get after delete" 1 "$tool" get rt/bool; says "not found"
expect "delete twice" 1 "$tool" delete rt/bool
expect "set through a scalar" 4 "$tool" set rt/text/below x; says "0x8000004a"
expect "a path over 512 bytes" 4 "$tool" get "rt/$(printf 'a%.0s' $(seq 520))"; says "0x80000062"

# A nested tree written whole, read back whole.
expect "set a tree" 0 "$tool" set cfg '{"net": {"hosts": ["a", "b"], "port": 8080}, "on": true, "ratio": 0.5}' --type json
expect "tree --json" 0 "$tool" tree cfg --json
python3 -c '
import json, sys
d = json.loads(sys.argv[1])
assert d["path"] == "cfg/" and d["type"] == "map", d
v = d["value"]
assert sorted(v) == ["net", "on", "ratio"], v
hosts = v["net"]["value"]["hosts"]
assert hosts["type"] == "list" and [h["value"] for h in hosts["value"]] == ["a", "b"], hosts
assert v["net"]["value"]["port"] == {"type": "i64", "flag": False, "value": 8080}, v["net"]
assert (v["on"]["type"], v["on"]["value"]) == ("bool", True)
assert (v["ratio"]["type"], v["ratio"]["value"]) == ("double", 0.5)
' "$out" || fail "tree --json gave: $out"
expect "tree" 0 "$tool" tree cfg
grep -Eq '^cfg/net/hosts/1/ +string +"b"$' <<<"$out" || fail "tree text: $out"
expect "get inside the tree" 0 "$tool" get cfg/net/port; is "8080"
expect "tree of the root" 0 "$tool" tree --json
python3 -c 'import json, sys; d = json.loads(sys.argv[1]); assert {"cfg", "locale", "rt"} <= set(d["value"]), d' "$out" ||
    fail "tree of the root: $out"

# reset: back to the shipped default where there is one, else deleted; an absent path is reset.
expect "overwrite a default" 0 "$tool" set locale/language ru-RU
expect "reset to the default" 0 "$tool" reset locale/language
expect "get the default again" 0 "$tool" get locale/language; is "en-US"
expect "reset without a default deletes" 0 "$tool" reset rt/i16
expect "get after reset" 1 "$tool" get rt/i16
expect "reset of an absent path" 0 "$tool" reset rt/i16
printf '{"rt": {"i16": 7}}' > "$HL_RUNTIME_DIR/defaults.json"
expect "reset from --defaults" 0 "$tool" reset rt/i16 --defaults="$HL_RUNTIME_DIR/defaults.json"
expect "get the given default" 0 "$tool" get rt/i16 --json
python3 -c 'import json, sys; d = json.loads(sys.argv[1]); assert (d["type"], d["value"]) == ("i64", 7), d' "$out" ||
    fail "reset from --defaults: $out"

# Any bytes print: a string that isn't UTF-8 is escaped in text and in JSON, never an abort.
expect "set a string that isn't UTF-8" 0 "$tool" set odd/text "$(printf 'a\xffb\nc')"
expect "tree of it" 0 "$tool" tree odd/text; grep -Fq '"a\xffb\nc"' <<<"$out" || fail "tree escapes: $out"
expect "get --json of it" 0 "$tool" get odd/text --json
python3 -c 'import json, sys; d = json.loads(sys.argv[1]); assert (d["value"], d["bytes"]) == ("a\ufffdb\nc", "61 ff 62 0a 63"), d' "$out" ||
    fail "get --json escapes: $out"

# A dump holds every type, flags and odd strings; loaded into an empty service, it dumps the same.
printf '/ map\nempty/ map flag\nnone/ none\nnolist/ list\nnobytes/ bytes\nflagged/ u8 flag 9\n' |
    "$tool" load loaded || fail "load of a flagged tree"
expect "dump of the root" 0 "$tool" dump; first=$out
grep -Fxq 'loaded/flagged/ u8 flag 9' <<<"$first" || fail "dump lacks the flag: $first"
"$daemon" --state-dir "$HL_RUNTIME_DIR/state" PSmgr > "$HL_RUNTIME_DIR/psmgr.out" 2>&1 &
pids+=($!)
for _ in $(seq 200); do grep -q ready "$HL_RUNTIME_DIR/psmgr.out" && break; sleep 0.05; done
"$tool" --service PSmgr load <<<"$first" || fail "load into the empty service"
expect "dump of the loaded service" 0 "$tool" --service PSmgr dump
[ "$out" = "$first" ] || fail "the dump changed on its way: $(diff <(echo "$first") <(echo "$out"))"
expect "load of a subtree elsewhere" 0 "$tool" --service PSmgr load copy < <("$tool" dump rt)
expect "the copy" 0 "$tool" --service PSmgr get copy/u64; is "18446744073709551615"

# Output that can't be written is an error.
out=$("$tool" tree > /dev/full 2>"$HL_RUNTIME_DIR/err"); code=$?
[ $code -eq 5 ] || fail "tree > /dev/full exits $code"; err=$(cat "$HL_RUNTIME_DIR/err"); says "can't write"

# monitor prints a change that another hl-settings process makes, and ends cleanly on SIGINT.
"$tool" monitor mon > "$HL_RUNTIME_DIR/monitor.out" 2> "$HL_RUNTIME_DIR/monitor.err" &
monitor=$!
pids+=($monitor)
for _ in $(seq 100); do grep -q monitoring "$HL_RUNTIME_DIR/monitor.err" && break; sleep 0.05; done
expect "set under the monitored path" 0 "$tool" set mon/level 3 --type u8
for _ in $(seq 120); do grep -q 'mon/' "$HL_RUNTIME_DIR/monitor.out" && break; sleep 0.05; done
grep -Eq '^mon/.*upd [0-9]+ ' "$HL_RUNTIME_DIR/monitor.out" || fail "monitor printed: $(cat "$HL_RUNTIME_DIR/monitor.out")"
kill -INT $monitor
for _ in $(seq 100); do kill -0 $monitor 2>/dev/null || break; sleep 0.05; done
if kill -0 $monitor 2>/dev/null; then
    fail "monitor still runs 5 s after SIGINT"
else
    wait $monitor; code=$?
    [ $code -eq 0 ] || fail "monitor exits $code after SIGINT: $(cat "$HL_RUNTIME_DIR/monitor.err")"
fi

# A monitor whose service dies says so and exits 3 (the client alone would retry silently).
"$tool" monitor mon > /dev/null 2> "$HL_RUNTIME_DIR/monitor.err" &
monitor=$!
pids+=($monitor)
for _ in $(seq 100); do grep -q monitoring "$HL_RUNTIME_DIR/monitor.err" && break; sleep 0.05; done
kill -9 "${pids[0]}"
for _ in $(seq 100); do kill -0 $monitor 2>/dev/null || break; sleep 0.05; done
if kill -0 $monitor 2>/dev/null; then
    fail "monitor still runs 5 s after its service died"
else
    wait $monitor; code=$?
    [ $code -eq 3 ] || fail "monitor exits $code after its service died: $(cat "$HL_RUNTIME_DIR/monitor.err")"
fi

# The usage rows of the exit-code table, found before any service is asked: each names what was wrong.
while IFS='|' read -r what message args; do
    read -ra argv <<<"$args"
    expect "$what" 2 "$tool" "${argv[@]}" < /dev/null
    says "$message"; says "Try 'hl-settings --help'"
done <<'TABLE'
no command|no command given|
unknown command|frob|frob x
bad path|no settings path|get a_b
unknown type|unknown type 'int'|set x 1 --type int
value out of range|out of range|set x 256 --type=u8
missing value|takes PATH and VALUE|set x
unknown option|--jsn|get x --jsn
not a number|--wait|--wait soon get x
no dump|holds no node|load
TABLE
expect "--help" 0 "$tool" --help; grep -q "Exit status:" <<<"$out" || fail "--help: $out"
expect "--version" 0 "$tool" --version; grep -q "^hl-settings [0-9]" <<<"$out" || fail "--version: $out"

echo "$failures failed"
test $failures -eq 0
