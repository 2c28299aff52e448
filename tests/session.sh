#!/usr/bin/env bash
# Runs the commands of a section, each in an empty directory below /tmp, and compares the output of
# both streams and the exit status. In a transcript "$ " begins a command and "> " continues it. The
# output follows; a single line may follow " => " instead. (no-eol) marks a missing newline at the
# end, [N] the exit status N. "# NAME: " begins a section. The section EXAMPLES is that of
# the manual page.
# usage: session.sh TRANSCRIPT SECTION DIRECTORY_OF_GXUTIL
set -euo pipefail
exec 3>&- 4>&- 5>&- 6>&- 7>&- 8>&- 9>&-  # left open by the caller
export LC_ALL=C.UTF-8 PATH=$3:$PATH gxutil=$3/gxutil
manual=$(cd "${0%/*}/../tools" && pwd)/gxutil.1
export manual
unset LANGUAGE
work=$(mktemp -d /tmp/gxutil.XXXXXX)
trap 'rm -rf "$work"' EXIT

section() {
  if [ "$2" = EXAMPLES ]; then
    sed -n "/^\.EX/,/^\.EE/{/^\./d; s/\\\\-/-/g; s/\\\\(aq/'/g; s/\\\\e/\\\\/g; p;}" "$1"
  else
    sed -n "/^# $2: /,/^# [a-z]*: /{/^#/d; /./p;}" "$1"
  fi
}

run() {
  [ -n "$1" ] || return 0
  local command=${1% => *} end=$'\n' status=0
  [ "$command" = "$1" ] || end=' => '
  printf '$ %s%s' "${command//$'\n'/$'\n> '}" "$end"
  mkdir "$work/empty"
  (cd "$work/empty" && exec bash -c "$command") >"$work/output" 2>&1 </dev/null || status=$?
  rm -rf "$work/empty"
  cat "$work/output"
  [ ! -s "$work/output" ] || [ -z "$(tail -c 1 "$work/output")" ] || echo ' (no-eol)'
  [ "$status" = 0 ] || echo "[$status]"
}

section "$1" "$2" >"$work/expected"
[ -s "$work/expected" ]
command=
{
  while IFS= read -r line; do
    case $line in
      '$ '*) run "$command"; command=${line#??} ;;
      '> '*) command+=$'\n'${line#??} ;;
    esac
  done <"$work/expected"
  run "$command"
} >"$work/actual"
diff "$work/expected" "$work/actual"
