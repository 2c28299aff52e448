#!/usr/bin/env bash
# Configures and builds a preset, or one target of it. Prints warnings, and all output if the build fails.
# usage: scripts/build.sh [--target TARGET] PRESET [CMAKE_OPTION...]
set -euo pipefail
. "$(dirname "$0")/lib.sh"

target=all
if [ "${1:-}" = --target ]; then
  target=${2:?which target?}
  shift 2
fi
preset=${1:?which preset?}
shift

[ -e "build/$preset/CMakeCache.txt" ] || echo "build.sh: building the preset $preset ..." >&2
quietly cmake --preset "$preset" "$@"
quietly cmake --build "build/$preset" -j "$(jobs)" --target "$target"
grep 'warning:' "$log" >&2 || true
