#!/usr/bin/env bash
# Looks for a text that fails a check of fuzz/check.cpp, installing first what that needs. Keeps such a
# text in build/fuzz/findings, and exits with 1 then.
# usage: scripts/fuzz.sh SECONDS
set -euo pipefail
. "$(dirname "$0")/lib.sh"

seconds=${1:?how many seconds?}
scripts/setup.sh build fuzz
scripts/build.sh --target gxclient_fuzz fuzz
mkdir -p build/fuzz/findings
quietly build/fuzz/fuzz/gxclient_fuzz -max_total_time="$seconds" -max_len=512 -timeout=10 \
  -print_final_stats=1 -artifact_prefix=build/fuzz/findings/
sed -n 's/^stat::number_of_executed_units: */executions: /p' "$log"
