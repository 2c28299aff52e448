#!/usr/bin/env bash
# Configures and builds a preset, or one target of it. Says on the standard error that it compiles,
# and how far it is where that is a terminal; shows what the build printed only when it fails.
# usage: scripts/build.sh [--target TARGET] PRESET [CMAKE_OPTION...]
set -euo pipefail
cd "$(dirname "$0")/.."

target=all from_scratch='some minutes'
if [ "${1:-}" = --target ]; then
  target=${2:?which target?} from_scratch='about a minute'
  shift 2
fi
preset=${1:?which preset?}
shift

message="build.sh: building $target, preset $preset"
[ "$target" != all ] || message="build.sh: building the preset $preset"
begun=
[ -e "build/$preset/CMakeCache.txt" ] || {
  message="$message, $from_scratch"
  begun=yes
}

# Passes the lines of the build on.
progress() {
  local line
  [ -z "$begun" ] || echo "$message ..." >&2
  while IFS= read -r line; do
    printf '%s\n' "$line"
    case $line in '['*'%] Building '*) ;; *) continue ;; esac
    [ -n "$begun" ] || echo "$message ..." >&2
    begun=yes
    [ ! -t 2 ] || printf '\r%s] ' "${line%%]*}" >&2
  done
  [ ! -t 2 ] || printf '\r\033[K' >&2
}

log=$(mktemp)
trap 'rm -f "$log"' EXIT
jobs=$(getconf _NPROCESSORS_ONLN)
if ! { cmake --preset "$preset" "$@" && cmake --build --preset "$preset" -j "$jobs" --target "$target"; } \
  2>&1 | progress >"$log"; then
  cat "$log" >&2
  echo "build.sh: building the preset $preset failed" >&2
  exit 1
fi
grep -E 'warning:' "$log" >&2 || true
