#!/usr/bin/env bash
# The dialog benchmark: builds the program, the tools and the benchmark driver, which runs a hosted
# session on a private Xvfb (no window manager) and measures the resident dialog against a one-shot
# `zenity --question` on it. Prints the machine, then the table (Markdown; --json for JSON).
# Arguments go to the driver, e.g.
#   bash scripts/bench-dialog.sh --backends software,default --requests 200 --starts 30
# Exit status: the driver's (0 measured, 1 usage, 2 set-up failed, 3 a measurement failed).
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh >&2
cmake --preset default >/dev/null
cmake --build --preset default -j "$(nproc)" --target hl_access_arbiter_dialog_benchmark >&2

json=0
for argument in "$@"; do [ "$argument" = "--json" ] && json=1; done
if [ $json -eq 0 ]; then
  echo "Machine: $(lscpu | sed -n 's/^Model name: *//p' | head -1), $(nproc) CPUs," \
       "$(free -g | awk '/^Mem:/ {print $2}') GiB, Linux $(uname -r)," \
       "Qt $(dpkg-query -W -f='${Version}' libqt6core6 2>/dev/null || echo '?')," \
       "zenity $(dpkg-query -W -f='${Version}' zenity 2>/dev/null || echo '?')," \
       "a private Xvfb without a window manager"
fi
build/default/bench/dialog/hl_access_arbiter_dialog_benchmark --xvfb "$@"
