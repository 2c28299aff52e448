#!/usr/bin/env bash
# Stands for a C++ compiler: that of zig, for the platform ZIG_TARGET, which takes not all options
# that the build uses. It runs a linker that knows --wrap, but hands it no such option: a link with
# one is made by that linker itself, called as zig says that it would.
# usage: ZIG=PROGRAM ZIG_TARGET=PLATFORM zig_cxx.sh OPTION...
set -euo pipefail

wraps=() others=()
for option in "$@"; do
  case $option in
    -Wl,--wrap=* | -Wl,--defsym=*) IFS=, read -ra words <<<"${option#-Wl,}"; wraps+=("${words[@]}") ;;
    -fPIE) others+=(-fPIC) ;;  # refused for what is not a program, so for every object file
    -Wl,-v) ;;  # CMake's, to learn about the linker
    *) others+=("$option") ;;
  esac
done
[ ${#wraps[@]} -gt 0 ] || exec "$ZIG" c++ -target "$ZIG_TARGET" "${others[@]}"

# Without the option the first link fails, but only after its command was printed.
link=$("$ZIG" c++ -target "$ZIG_TARGET" -v "${others[@]}" 2>&1 | sed -n 's/^ld\.lld //p') || true
read -ra words <<<"$link"
exec "$ZIG" ld.lld "${words[@]}" "${wraps[@]}"
