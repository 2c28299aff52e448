#!/usr/bin/env bash
# Builds gxutil, installing first what that needs, and runs it. "run.sh help" prints its commands.
# usage: scripts/run.sh GXUTIL_ARGUMENT...
set -euo pipefail
directory=$PWD
. "$(dirname "$0")/lib.sh"

scripts/setup.sh build
scripts/build.sh --target gxutil release
gxutil=$PWD/build/release/tools/gxutil
cd "$directory"
exec "$gxutil" "$@"
