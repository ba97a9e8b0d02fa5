#!/usr/bin/env bash
# Installs what is needed, builds the project and runs every test.
#   scripts/test.sh            RelWithDebInfo build in build/default
#   scripts/test.sh asan       AddressSanitizer + UBSan build in build/asan
#   scripts/test.sh tsan       ThreadSanitizer build in build/tsan: only the tests labelled
#                              "concurrency", and only the targets they need
#   PRESET=ci scripts/test.sh  any configure preset (ci turns warnings into errors)
set -euo pipefail
cd "$(dirname "$0")/.."
preset="${1:-${PRESET:-default}}"

bash scripts/setup.sh
cmake --preset "$preset"
case "$preset" in
  *tsan)
    # Only the test executables that hold a concurrency test (their peer programs come in as
    # dependencies); configure lists them.
    mapfile -t targets < "build/$preset/concurrency-test-targets.txt"
    cmake --build --preset "$preset" -j "$(nproc)" --target "${targets[@]}"
    ctest --preset "$preset" -j "$(nproc)" -L concurrency
    ;;
  *)
    cmake --build --preset "$preset" -j "$(nproc)"
    # The real-window tests want an X server; everything else runs on the offscreen platform.
    xvfb-run -a -s "-screen 0 1280x1024x24" ctest --preset "$preset" -j "$(nproc)"
    ;;
esac
