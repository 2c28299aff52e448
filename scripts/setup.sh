#!/usr/bin/env bash
# Installs the packages that the project needs and this machine lacks, and names them. Debian and Ubuntu:
# apt, with sudo unless root runs it. macOS: brew. On another system it only names the packages.
# usage: scripts/setup.sh [--list] [GROUP]...   (--list only prints the names)
#   build                                      to compile and test: the default
#   check clang bench valgrind coverage fuzz docs package    for the scripts and presets of these names
#   aarch64 armhf i386 riscv64 s390x debian13 macos          for scripts/cross.sh
set -euo pipefail
. "$(dirname "$0")/lib.sh"

system=debian
[ "$(uname)" != Darwin ] || system=brew

packages() {
  case $system-$1 in
    debian-build) echo g++ cmake make pkg-config gettext libcli11-dev libgtest-dev nettle-dev ;;
    brew-build) echo cmake pkgconf cli11 gettext nettle ;;
    brew-check) echo llvm cppcheck shellcheck ;;
    debian-check) echo clang clang-format clang-tidy cppcheck locales shellcheck ;;
    debian-clang) echo clang libc++-dev libc++abi-dev googletest ;;
    debian-bench)
      echo libabsl-dev libboost-dev libevent-dev libglib2.0-dev libmodpbase64-dev libssl-dev
      ;;
    debian-valgrind) echo valgrind libc6-dbg ;;
    debian-coverage) echo gcovr ;;
    debian-docs) echo doxygen doxygen-awesome-css ;;
    debian-fuzz) echo clang libclang-rt-dev ;;
    debian-package) echo dpkg-dev file lintian ;;
    debian-aarch64) echo g++-aarch64-linux-gnu mmdebstrap qemu-user ;;
    debian-armhf) echo g++-arm-linux-gnueabihf mmdebstrap qemu-user ;;
    debian-i386) echo g++-i686-linux-gnu mmdebstrap qemu-user ;;
    debian-riscv64) echo g++-riscv64-linux-gnu mmdebstrap qemu-user ;;
    debian-s390x) echo g++-s390x-linux-gnu mmdebstrap qemu-user ;;
    debian-debian13) echo mmdebstrap ;;
    debian-macos) command -v npm >/dev/null || echo npm ;;
    *) return 1 ;;
  esac
}

installed() {
  if [ "$system" = brew ]; then
    brew list -1
  else
    dpkg-query -W -f '${db:Status-Status} ${Package}\n' | sed -n 's/^installed //p'
  fi
}

install() {
  if [ "$system" = brew ]; then
    brew install "$@"
  else
    $sudo apt-get update &&
      $sudo env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "$@"
  fi
}

list=
if [ "${1:-}" = --list ]; then
  list=yes
  shift
fi
[ $# -gt 0 ] || set -- build
wanted=$(for group in "$@"; do
  packages "$group" || { echo "setup.sh: no group '$group'" >&2; exit 2; }
done | tr ' ' '\n' | sort -u)
if [ -n "$list" ]; then
  echo "$wanted"
  exit 0
fi
if ! command -v dpkg-query brew >/dev/null; then
  echo "setup.sh: neither apt nor brew was found; needed:" $wanted >&2
  exit 0
fi
missing=$(comm -23 <(echo "$wanted") <(installed | sort -u))
[ -n "$missing" ] || exit 0
sudo=
[ "$(id -u)" = 0 ] || sudo=sudo
if [ "$system-$sudo" = debian-sudo ] && ! command -v sudo >/dev/null; then
  echo 'setup.sh: packages are missing and there is no sudo; an administrator must run' >&2
  echo '  apt-get update && apt-get install -y --no-install-recommends' $missing >&2
  exit 1
fi
echo "setup.sh: installing" $missing >&2
quietly install $missing
