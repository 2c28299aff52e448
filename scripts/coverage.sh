#!/usr/bin/env bash
# Runs the tests in a coverage build, installing first what that needs, and prints the lines and branches
# of common/. Fails below 100 % of the lines or 95 % of the branches. Exception edges do not count.
# usage: scripts/coverage.sh
set -euo pipefail
. "$(dirname "$0")/lib.sh"

scripts/setup.sh build coverage
find build/coverage -name '*.gcda' -delete 2>/dev/null || true
scripts/test.sh coverage | tail -n 3
gcovr --root . --filter 'common/' --object-directory build/coverage \
  --exclude-throw-branches --exclude-unreachable-branches \
  --txt --print-summary --fail-under-line 100 --fail-under-branch 95
