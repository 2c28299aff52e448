#!/usr/bin/env bash
# Builds a preset and runs its tests, installing first what that needs.
# usage: scripts/test.sh [PRESET [CMAKE_OPTION...]]   (default: debug)
set -euo pipefail
. "$(dirname "$0")/lib.sh"

preset=${1:-debug}
[ $# -eq 0 ] || shift
scripts/setup.sh build
[ "$preset" != clang ] || scripts/setup.sh clang
scripts/build.sh "$preset" "$@"
if [ "$(uname)" != Linux ]; then
  echo "test.sh: the tests are for Linux; the library and the tool are built, nothing was tested" >&2
  exit
fi
ctest --preset "$preset" -j "$(jobs)" | grep --line-buffered -v '^ *Start '
