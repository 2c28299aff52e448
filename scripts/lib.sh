# shellcheck shell=bash
# Every script sources this file first. It answers --help with the comment at the top of the script, and
# changes to the project's directory.
[ "${1:-}" != --help ] || { sed -n '2,/^[^#]/s/^# \{0,1\}//p' "$0"; exit; }
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit

# The number of jobs that run at the same time.
jobs() { getconf _NPROCESSORS_ONLN; }

# Runs a command and collects its output in $log, which goes to the standard error if it fails. Prints
# the current line every five seconds meanwhile.
# usage: quietly COMMAND...
quietly() {
  local line next=$((SECONDS + 5)) name=${0##*/}
  [ -n "${log:-}" ] || { log=$(mktemp); trap 'rm -f "$log"' EXIT; }
  if "$@" 2>&1 | while IFS= read -r line; do
    printf '%s\n' "$line"
    [ "$SECONDS" -ge "$next" ] || continue
    printf '%s: %s\n' "$name" "$line" >&2
    next=$((SECONDS + 5))
  done >"$log"; then return; fi
  cat "$log" >&2
  echo "$name: failed: $*" >&2
  return 1
}
