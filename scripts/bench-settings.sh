#!/usr/bin/env bash
# Installs what is needed, builds the settings tree exchange benchmark (and hl-settingsd, the service
# it starts) in build/default, and runs it: 5 repetitions of at least 0.5 s per case. Arguments are
# passed to the benchmark (Google Benchmark flags), e.g. --benchmark_filter=Read.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/setup.sh
cmake --preset default
cmake --build --preset default -j "$(nproc)" --target hl_settings_tree_exchange_benchmark
build/default/src/settings_manager/hl_settings_tree_exchange_benchmark \
  --benchmark_repetitions=5 --benchmark_min_time=0.5 "$@"
