#!/usr/bin/env bash
# Applies .clang-format to every C++ source of the project. With --check, changes nothing and
# exits 1 if any file would change.
set -euo pipefail
cd "$(dirname "$0")/.."
mode=(-i)
[ "${1:-}" = "--check" ] && mode=(--dry-run --Werror)
git ls-files -- '*.cpp' '*.h' '*.hpp' | xargs -r clang-format "${mode[@]}"
