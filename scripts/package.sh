#!/usr/bin/env bash
# Makes the Debian packages gxclient-util-dev and gxclient-tools in build/package, installing first
# what that needs.
# usage: scripts/package.sh
set -euo pipefail
umask 022  # the packages keep the modes of the files
here=$(dirname "$0")

"$here/setup.sh" build package
"$here/build.sh" package
cd "$here/../build/package"
rm -f ./*.deb
cpack >cpack.log 2>&1 || { cat cpack.log >&2; exit 1; }
ls -s --block-size=K ./*.deb
