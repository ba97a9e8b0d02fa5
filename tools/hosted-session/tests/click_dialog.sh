# Sourced by the shell tests that answer the dialog in a session: click_dialog X Y waits up to 60 s
# for the shown AccessArbiter window and clicks (X, Y) of it with a real X event; exit 10 when no
# dialog is shown.
click_dialog() {
  local window=""
  # A search fails as a whole when a window goes away under it (BadWindow): search again.
  for _ in $(seq 600); do
    window=$(xdotool search --onlyvisible --name '^AccessArbiter$' 2>/dev/null | head -1)
    [ -n "$window" ] && break
    sleep 0.1
  done
  [ -n "$window" ] || { echo "the dialog was not mapped" >&2; exit 10; }
  sleep 0.5
  xdotool mousemove --window "$window" "$1" "$2" click 1
}
