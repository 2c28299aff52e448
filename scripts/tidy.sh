#!/usr/bin/env bash
# Runs clang-tidy over the library, the tool, the tests and the fuzz targets, as .clang-tidy says.
# usage: scripts/tidy.sh
set -euo pipefail
cd "$(dirname "$0")/.."

command -v clang-tidy >/dev/null || {
  echo "tidy.sh: clang-tidy is missing; scripts/setup.sh check installs it" >&2
  exit 1
}
scripts/build.sh clang
# Findings go to the standard output; the standard error only counts what was suppressed.
find common fuzz tests tools -path tests/install -prune -o -name '*.cpp' -print0 |
  xargs -0 -n 1 -P "$(getconf _NPROCESSORS_ONLN)" clang-tidy -p build/clang --quiet 2>/dev/null
