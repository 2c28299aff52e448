#!/usr/bin/env bash
# Measures each function beside the libraries that people would use instead and prints a table: the time
# of a call, and its ratio to the other library's time. Below 1 is faster than the other library.
# usage: scripts/bench.sh [TEXT]    the rows whose name has the text; by default all
#        scripts/bench.sh --chart   all rows; draws docs/benchmarks.svg too
set -euo pipefail
. "$(dirname "$0")/lib.sh"

scripts/setup.sh build bench
scripts/build.sh release -DGXCLIENT_BUILD_BENCH=ON
table=build/release/bench/table.md
filter=${1:-}
[ "$filter" != --chart ] || filter=
{
  printf '| function | time (us) | beside | ratio |\n|---|---:|---|---:|\n'
  build/release/bench/gxclient_process_bench "$filter"
  build/release/bench/gxclient_bench "$filter"
} | tee "$table"
if [ "${1:-}" = --chart ]; then
  cpu=$(sed -n 's/^model name[^:]*: *//p' /proc/cpuinfo | head -n 1)
  awk -v machine="${cpu:-$(uname -m)}, $(jobs) cores" -f bench/chart.awk "$table" >docs/benchmarks.svg
fi
