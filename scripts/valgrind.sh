#!/usr/bin/env bash
# Runs the tests of tests/ under valgrind, installing first what that needs. Fails where memory is misused or
# lost, in forked children as well, and where a program ends with a descriptor open that it opened.
# With --transcript it follows the transcript instead, which takes minutes: what it calls as gxutil, not
# as "$gxutil" or behind env.
# usage: scripts/valgrind.sh [--transcript]
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh build valgrind
scripts/build.sh debug
export reports=$PWD/build/debug/valgrind
rm -rf "$reports"
mkdir "$reports"

# The tests have an operator new that can be made to fail: it stays in its place. Freeing the C
# library at the exit flushes its streams, also in a child that leaves them alone. A report file of
# valgrind's own making would be one more descriptor in every child.
export VALGRIND_OPTS="--soname-synonyms=somalloc=nouserintercepts --run-libc-freeres=no
  --run-cxx-freeres=no --track-fds=yes --leak-check=full --show-leak-kinds=definite,indirect
  --errors-for-leak-kinds=definite,indirect --error-exitcode=99 --log-fd=9"

# ThreadsDoNotDisturbEachOther: a child forked between threads has lost what only the stacks of the
# others pointed to.
export GTEST_FILTER=-Hostile.ThreadsDoNotDisturbEachOther

status=0
if [ "${1:-}" = --transcript ]; then
  # shellcheck disable=SC2016  # for the shells of the transcript
  echo 'gxutil() { valgrind "$(type -P gxutil)" "$@" 9>>"$reports/gxutil.log"; }' >"$reports/gxutil.bash"
  # The reports count here, not the test: valgrind needs descriptors of its own, and some commands
  # that limit them print something else.
  BASH_ENV=$reports/gxutil.bash ctest --test-dir build/debug -R '^gxutil\.' >"$reports/gxutil.out" || true
else
  # Those that ctest knows: beside them may lie programs of an earlier build.
  # shellcheck disable=SC2016  # for the shell that xargs starts
  ctest --test-dir build/debug --show-only=json-v1 | sed -n 's|^ *"\(/.*_test\)",*$|\1|p' | sort -u |
    xargs -P "$(getconf _NPROCESSORS_ONLN)" -I{} sh -c 'report=$reports/${1##*/}
      valgrind "$1" --gtest_brief=1 >"$report.out" 2>&1 9>>"$report.log" ||
        { cat "$report.out"; exit 1; }' - {} || status=1
fi

# The processes that have errors, or that began here, not as a fork, and opened what they left open.
# A forked child may hold what is its own until _exit().
bad=$(awk '/ Command: / { began[$1] }
  / ERROR SUMMARY: [1-9]/ { bad[$1] }
  after[$1] && ($1 in began) && !/<inherited from parent>/ { bad[$1] }
  { after[$1] = / Open file descriptor / }
  END { for (process in bad) print "^" process }' "$reports"/*.log)
if [ -n "$bad" ]; then
  grep -ah "$bad" "$reports"/*.log
  status=1
fi
[ "$status" != 0 ] || echo "valgrind.sh: no findings in $(cat "$reports"/*.log | grep -ac ' ERROR SUMMARY: ') processes"
exit "$status"
