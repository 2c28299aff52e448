#!/usr/bin/env bash
# Makes the Debian packages of a preset in build/PRESET, installing first what that needs, and checks
# them with lintian. Their maintainer is taken from DEBFULLNAME and DEBEMAIL.
# usage: scripts/package.sh [release|shared]   (static or shared libraries; default: release)
set -euo pipefail
umask 022  # the packages keep the modes of the files
. "$(dirname "$0")/lib.sh"

preset=${1:-release}
scripts/setup.sh build package
scripts/build.sh "$preset" -DCMAKE_INSTALL_PREFIX=/usr
cd "build/$preset"
rm -f ./*.deb
quietly cpack -G DEB
lintian --allow-root --fail-on error ./*.deb
ls -s --block-size=K ./*.deb
