#!/usr/bin/env bash
# Runs clang-tidy over the sources with the checks of .clang-tidy, installing first what that needs.
# usage: scripts/tidy.sh
set -euo pipefail
. "$(dirname "$0")/lib.sh"

scripts/setup.sh build check clang
quietly cmake --preset clang

# Findings go to the standard output; the standard error only counts the suppressed ones.
# usage: tidy OPTION... <SOURCES   (each ends with a NUL byte)
tidy() {
  xargs -0 -n 1 -P "$(jobs)" clang-tidy -p build/clang --quiet "$@" 2>/dev/null
}

find common tools -name '*.cpp' -print0 | tidy
# The analyzer takes most of the time for the macros of GoogleTest, which the sanitizers run anyway.
find fuzz tests -path tests/install -prune -o -name '*.cpp' -print0 | tidy --checks='-clang-analyzer-*'
