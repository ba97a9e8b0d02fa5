#!/usr/bin/env bash
# Installs what is needed, builds the program and runs it in a hosted-platform session.
# Arguments are passed on to the program.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
cmake --preset default >/dev/null
cmake --build --preset default -j "$(nproc)" --target access_arbiter access_arbiter_preview hl-ipc

# The session provides the platform's UI font family, as the hosted platform's session would.
export FONTCONFIG_FILE="$PWD/tools/hosted-session/fontconfig/fonts.conf"
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
  echo "run: no display found; running on the offscreen platform" >&2
  export QT_QPA_PLATFORM=offscreen
fi
exec build/default/src/access_arbiter/access_arbiter "$@"
