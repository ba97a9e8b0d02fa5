#!/usr/bin/env bash
# Installs what is needed, builds the program and runs it.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
cmake --preset default >/dev/null
cmake --build --preset default -j "$(nproc)" --target access_arbiter
exec build/default/src/access_arbiter/access_arbiter "$@"
