#!/usr/bin/env bash
# Builds the project, installing first what that needs, and runs all tests.
# usage: scripts/test.sh [PRESET [CMAKE_OPTION...]]   (debug is the default)
set -euo pipefail
here=$(dirname "$0")
preset=${1:-debug}
[ $# -eq 0 ] || shift

"$here/setup.sh" build
"$here/build.sh" "$preset" "$@"
cd "$here/.."
if [ "$(uname)" != Linux ]; then
  echo "test.sh: the tests are for Linux; the library and the tool are built, nothing was tested" >&2
  exit
fi
ctest --test-dir "build/$preset" -j "$(getconf _NPROCESSORS_ONLN)" --output-on-failure \
  --no-tests=error | grep -v '^ *Start '
