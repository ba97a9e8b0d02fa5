#!/usr/bin/env bash
# Builds the .deb as a distributor would: a release build without tests or benchmarks (the
# `package` preset, installed under /usr), cpack -G DEB, and lintian's verdict on the result.
#   bash scripts/package.sh            -> build/package/access-arbiter_<version>_<arch>.deb
# Then: sudo apt install ./build/package/access-arbiter_*.deb
# Exit status: 0 the package is built and lintian finds no error; 1 otherwise.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh >&2
cmake --preset package >/dev/null
cmake --build --preset package -j "$(nproc)"
(cd build/package && cpack -G DEB)
deb=$(ls build/package/access-arbiter_*.deb)
echo "package: $deb"
lintian --tag-display-limit 0 "$deb" || true
! lintian "$deb" 2>/dev/null | grep -q '^E: '
