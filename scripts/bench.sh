#!/usr/bin/env bash
# Builds and runs the benchmarks, installing first what they need, and prints the ratio tables:
# each function beside its baselines, called in turn, medians of 15 repetitions in random order.
# usage: scripts/bench.sh [FILTER [BENCHMARK_OPTION...]]
#        scripts/bench.sh --chart [--again]   runs them all and draws docs/benchmarks.svg; with
#                                             --again it draws the last run
set -euo pipefail
cd "$(dirname "$0")/.."
results=build/release/bench

run() {
  local filter=${1:-.} cpu program
  [ $# -eq 0 ] || shift
  cpu=$(sed -n 's/^model name[^:]*: *//p' /proc/cpuinfo 2>/dev/null | head -n 1) || true
  scripts/build.sh release -DGXCLIENT_BUILD_BENCH=ON
  for program in gxclient_process_bench gxclient_bench; do
    "build/release/bench/$program" --benchmark_filter="$filter" \
      --benchmark_repetitions=15 --benchmark_enable_random_interleaving=true \
      --benchmark_min_time=0.05 --benchmark_context=cpu="${cpu:-$(uname -m)}" \
      --benchmark_out="$results/$program.json" --benchmark_out_format=json "$@"
  done
}

scripts/setup.sh build bench
if [ "${1:-}" != --chart ]; then
  run "$@"
  exit
fi
[ "${2:-}" = --again ] || run
data=$(mktemp)
trap 'rm -f "$data"' EXIT
jq -r -s -f bench/chart.jq "$results"/*.json >"$data"
about=$(jq -r '.context | "\(.cpu), \(.num_cpus) cores, \(.compiler), \(.date[:10])"' \
  "$results/gxclient_bench.json")
gnuplot -e "data='$data'; about='$about'" bench/chart.gp >docs/benchmarks.svg
