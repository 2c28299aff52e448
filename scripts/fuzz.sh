#!/usr/bin/env bash
# Builds the fuzz targets, installing first what that needs, and runs each for some seconds with the
# tokens of its short texts as a dictionary. Keeps an input that fails in build/fuzz/findings, and
# exits with 1 then.
# usage: scripts/fuzz.sh SECONDS [TARGET]...
set -euo pipefail
. "$(dirname "$0")/lib.sh"

seconds=${1:?how many seconds for each target?}
shift

scripts/setup.sh build fuzz
scripts/build.sh fuzz
[ $# -gt 0 ] || { set -- fuzz/*_fuzz.cpp; set -- "${@#fuzz/}"; set -- "${@%_fuzz.cpp}"; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p build/fuzz/findings

status=0
for target in "$@"; do
  "build/fuzz/fuzz/${target}_short_texts" dictionary | sort -u >"$work/dictionary"
  result=0
  "build/fuzz/fuzz/${target}_fuzz" -max_total_time="$seconds" -max_len=512 -timeout=10 \
    -print_final_stats=1 -artifact_prefix="build/fuzz/findings/$target-" \
    -dict="$work/dictionary" \
    >"$work/log" 2>&1 || result=$?
  executions=$(sed -n 's/^stat::number_of_executed_units: *//p' "$work/log")
  findings=$(sed -n 's/.*Test unit written to //p' "$work/log")
  echo "$target: ${executions:-0} executions, $(grep -c . <<<"$findings" || true) new findings"
  [ "$result" = 0 ] && continue
  status=1
  tail -n 40 "$work/log" >&2
  echo "fuzz.sh: $target failed${findings:+ with $findings}" >&2
done
exit "$status"
