#!/usr/bin/env bash
# Formats the sources in place, installing first what that needs; with --check only prints what differs.
# usage: scripts/format.sh [--check]
set -euo pipefail
. "$(dirname "$0")/lib.sh"

scripts/setup.sh check
mode=(-i)
[ "${1:-}" != --check ] || mode=(--dry-run --Werror)
find bench common docs fuzz tests tools '(' -name '*.h' -o -name '*.cpp' ')' -print0 |
  xargs -0 clang-format "${mode[@]}"
