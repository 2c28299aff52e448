#!/usr/bin/env bash
# Runs clang-tidy over the library, the tool and the tests, as .clang-tidy says.
# usage: scripts/tidy.sh
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/build.sh clang
git ls-files -z 'common/*.cpp' 'tools/*.cpp' 'tests/*.cpp' ':!tests/install' |
  xargs -0 -n 1 -P "$(getconf _NPROCESSORS_ONLN)" clang-tidy -p build/clang --quiet 2>/dev/null
