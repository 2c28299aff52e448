#!/usr/bin/env bash
# Runs the test programs under valgrind, which finds values that were never set, in forked children
# too. Leaks and overruns are found faster by the sanitizers.
# usage: scripts/valgrind.sh
set -euo pipefail
. "$(dirname "$0")/lib.sh"

scripts/setup.sh build valgrind
scripts/build.sh debug
# The tests replace operator new: valgrind must not. To free the memory of the C library would also
# flush the client's streams in a forked child. Without fair scheduling, busy threads starve others.
export VALGRIND_OPTS='--quiet --leak-check=no --soname-synonyms=somalloc=nouserintercepts
  --run-libc-freeres=no --fair-sched=yes --error-exitcode=99 --log-fd=9'
report=build/debug/valgrind.log status=0
ctest --test-dir build/debug --show-only=json-v1 | sed -n 's|^ *"\(/.*_test\)",*$|\1|p' | sort -u |
  xargs -P "$(jobs)" -I{} valgrind {} --gtest_brief=1 9>"$report" || status=1
cat "$report" >&2
[ ! -s "$report" ] || status=1
exit "$status"
