#!/usr/bin/env bash
# Configures and builds a preset; shows what the build printed only when it fails.
# usage: scripts/build.sh PRESET [CMAKE_OPTION...]
set -euo pipefail
cd "$(dirname "$0")/.."

preset=${1:?which preset?}
shift
log=$(mktemp)
trap 'rm -f "$log"' EXIT
jobs=$(getconf _NPROCESSORS_ONLN)
if ! { cmake --preset "$preset" "$@" && cmake --build --preset "$preset" -j "$jobs"; } \
  >"$log" 2>&1; then
  cat "$log" >&2
  echo "build.sh: building the preset $preset failed" >&2
  exit 1
fi
grep -E 'warning:' "$log" >&2 || true
