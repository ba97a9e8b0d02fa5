#!/usr/bin/env bash
# The dialog soak: one resident AccessArbiter under hl-appmgr on a private Xvfb answers many requests
# in a row, each with one real click, Approve and Decline in turn (the Soak case of the desktop
# end-to-end tests, which CI runs with 50). Prints the machine, the answers that matched their
# button, the manager's restarts and the program's resident set size at each tenth of the run, then
# judges the targets: every answer right, no restart, RSS growth under 1 MiB from the first tenth to
# the end.
#   bash scripts/soak-dialog.sh [REQUESTS]     (default 1000)
# Exit status: 0 every target met, 1 a target missed, 2 usage, 3 the run itself failed.
set -euo pipefail
cd "$(dirname "$0")/.."
requests="${1:-1000}"
[[ "$requests" =~ ^[0-9]+$ ]] && [ "$requests" -ge 10 ] ||
  { echo "soak-dialog: REQUESTS must be a number of at least 10" >&2; exit 2; }
bash scripts/setup.sh >&2
cmake --preset default >/dev/null
cmake --build --preset default -j "$(nproc)" --target hl_access_arbiter_desktop_e2e_tests >&2

echo "Machine: $(lscpu | sed -n 's/^Model name: *//p' | head -1), $(nproc) CPUs," \
     "$(free -g | awk '/^Mem:/ {print $2}') GiB, Linux $(uname -r)," \
     "Qt $(dpkg-query -W -f='${Version}' libqt6core6 2>/dev/null || echo '?'), Xvfb without a window manager," \
     "QT_QUICK_BACKEND=${QT_QUICK_BACKEND:-software}"
log=$(mktemp "${TMPDIR:-/tmp}/hl-soak.XXXXXX")
trap 'rm -f "$log"' EXIT
started=$(date +%s)
QT_QUICK_BACKEND="${QT_QUICK_BACKEND:-software}" HL_SOAK_REQUESTS="$requests" \
  build/default/src/access_arbiter/hl_access_arbiter_desktop_e2e_tests --gtest_filter='Soak.*' > "$log" 2>&1 || true
line=$(grep '^soak: ' "$log" || true)
[ -n "$line" ] || { cat "$log" >&2; echo "soak-dialog: the run did not finish" >&2; exit 3; }
echo "Duration: $(( $(date +%s) - started )) s"
# soak: requests N right N restarts N rss_kib R1:K1 R2:K2 ...
read -r _ _ total _ right _ restarts _ samples <<< "$line"
echo "Answers right: $right of $total; restarts by the manager: $restarts"
echo "RSS (KiB) by request: $samples"
first=$(awk '{split($1, a, ":"); print a[2]}' <<< "$samples")
last=$(awk '{split($NF, a, ":"); print a[2]}' <<< "$samples")
growth=$(( last - first ))
echo "RSS growth from request $(awk '{split($1, a, ":"); print a[1]}' <<< "$samples") to $total: $growth KiB"
met=0
[ "$right" -eq "$total" ] && echo "target every answer right: met" || { echo "target every answer right: MISSED"; met=1; }
[ "$restarts" -eq 0 ] && echo "target no restart: met" || { echo "target no restart: MISSED"; met=1; }
[ "$growth" -lt 1024 ] && echo "target RSS growth < 1024 KiB: met" || { echo "target RSS growth < 1024 KiB: MISSED"; met=1; }
exit $met
