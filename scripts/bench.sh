#!/usr/bin/env bash
# Builds and runs the benchmarks, installing first what they need, and prints the ratio table:
# each function beside its baselines, medians of 15 repetitions in random order.
# usage: scripts/bench.sh [FILTER [BENCHMARK_OPTION...]]
set -euo pipefail
here=$(dirname "$0")
filter=${1:-.}
[ $# -eq 0 ] || shift

"$here/setup.sh" build bench
"$here/build.sh" release -DGXCLIENT_BUILD_BENCH=ON
exec "$here/../build/release/bench/gxclient_bench" --benchmark_filter="$filter" \
  --benchmark_repetitions=15 --benchmark_enable_random_interleaving=true \
  --benchmark_min_time=0.05 "$@"
