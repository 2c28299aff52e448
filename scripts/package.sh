#!/usr/bin/env bash
# Makes the Debian packages of the shared libraries, of what a client is built with and of gxutil in
# build/package, installing first what that needs, and checks them with lintian. Their maintainer is
# who runs it: DEBFULLNAME and DEBEMAIL.
# usage: scripts/package.sh
set -euo pipefail
umask 022  # the packages keep the modes of the files
here=$(dirname "$0")

"$here/setup.sh" build package
"$here/build.sh" package-shared
"$here/build.sh" package
cd "$here/../build/package"
rm -f ./*.deb
cpack >cpack.log 2>&1 || { cat cpack.log >&2; exit 1; }
lintian --allow-root --fail-on error ./*.deb
ls -s --block-size=K ./*.deb
