#!/usr/bin/env bash
# Makes the reference of the public headers in build/docs, installing first what that needs, and says
# where it begins. Fails for anything public without a comment and for a comment that Doxygen cannot
# read.
# usage: scripts/docs.sh
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh docs
rm -rf build/docs
mkdir -p build/docs
doxygen docs/Doxyfile
echo build/docs/html/gxclient__util_8h.html
