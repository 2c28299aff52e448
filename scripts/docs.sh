#!/usr/bin/env bash
# Makes the reference of the public headers in build/docs, installing first what that needs, and prints
# the name of its first page. Fails for a public name without a comment and for a comment that Doxygen
# cannot read. Fails too if the tour in docs/guide.md is not docs/example.cpp, which a test compiles.
# Without the package of the theme the pages have Doxygen's own look.
# usage: scripts/docs.sh
set -euo pipefail
. "$(dirname "$0")/lib.sh"

scripts/setup.sh docs
rm -rf build/docs
mkdir -p build/docs
version=$(sed -n 's/^project(.* VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
theme=/usr/share/doxygen-awesome-css
{
  cat docs/Doxyfile
  echo "PROJECT_NUMBER = $version"
  [ ! -d "$theme" ] ||
    echo "HTML_EXTRA_STYLESHEET = $theme/doxygen-awesome.css $theme/doxygen-awesome-sidebar-only.css docs/theme.css"
} | doxygen -
sed '1,/^```cpp$/d; /^```$/,$d' docs/guide.md | diff docs/example.cpp -
echo build/docs/html/index.html
