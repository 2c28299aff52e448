#!/usr/bin/env bash
# Builds gxutil, installing first what that needs, and runs it.
# usage: scripts/run.sh GXUTIL_ARGUMENT...
set -euo pipefail
here=$(dirname "$0")

"$here/setup.sh" build
"$here/build.sh" --target gxutil release
exec "$here/../build/release/tools/gxutil" "$@"
