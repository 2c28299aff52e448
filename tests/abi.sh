#!/bin/sh
# Compares the symbols that the shared libraries export with the list in common/exported_symbols. A
# missing name breaks the clients of earlier versions. A new one is a promise and goes into the list
# deliberately. Weak functions are instances of templates, except those that a client may define itself.
# The names are those of libstdc++.
# usage: abi.sh LIBRARY...
set -eu
export LC_ALL=C
nm -DC --defined-only "$@" |
  sed -n 's/std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >/std::string/g
    s/^[0-9a-f]* [A-TV] //p; s/^[0-9a-f]* W \(Logfile::\|osx\)/\1/p' |
  sort -u | diff "$(dirname "$0")/../common/exported_symbols" -
