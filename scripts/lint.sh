#!/usr/bin/env bash
# Runs cppcheck over the sources and shellcheck over the scripts, installing first what that needs. Every
# finding fails.
# usage: scripts/lint.sh
set -euo pipefail
. "$(dirname "$0")/lib.sh"

scripts/setup.sh check

# Checks that are off, and why:
# passedByValue: parameters by value are the module's interface.
# useStlAlgorithm: a loop of one line needs no algorithm.
# getpwnamCalled, getpwuidCalled: the header requires one thread for these two.
# readdirCalled, strtokCalled: only in tests, which use them in one thread.
# redundantContinue: it is the body of a loop that needs none.
# accessMoved, shadowFunction: wrong about the range of a for statement and about a variable with
#   parentheses; clang-tidy and the compilers look for both.
# leakNoVarFunctionCall, resourceLeak: take a descriptor that is handed to its owner for a lost one.
# unusedStructMember: wrong about a member that TEST_F uses.
# normalCheckLevelMaxBranches: not a finding; newer versions say that they look at less by default.
options=('--enable=warning,style,performance,portability' --language=c++ --std=c++17 --quiet
  --library=posix --library=googletest -I common -I tests --error-exitcode=1)
for check in passedByValue useStlAlgorithm getpwnamCalled getpwuidCalled readdirCalled \
  strtokCalled redundantContinue accessMoved shadowFunction \
  leakNoVarFunctionCall resourceLeak unusedStructMember normalCheckLevelMaxBranches; do
  options+=("--suppress=$check")
done
find bench common docs fuzz tests tools -name '*.cpp' -print0 |
  xargs -0 cppcheck -j "$(jobs)" "${options[@]}"
# SC2086: in these scripts unquoted variables are lists of words.
find .ci/run po scripts tests tools '(' -name '*.sh' -o -name '*.bash' -o -name run ')' -print0 |
  xargs -0 shellcheck -x -P SCRIPTDIR -e SC2086
