#!/usr/bin/env bash
# Formats the sources in place; with --check only reports what differs.
# usage: scripts/format.sh [--check]
set -euo pipefail
cd "$(dirname "$0")/.."

mode=(-i)
[ "${1:-}" != --check ] || mode=(--dry-run --Werror)
find bench common docs fuzz tests tools '(' -name '*.h' -o -name '*.cpp' ')' -print0 |
  xargs -0 clang-format "${mode[@]}"
