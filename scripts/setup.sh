#!/usr/bin/env bash
# Installs what the project needs and this machine lacks, and says what it does.
# usage: scripts/setup.sh [--list] [GROUP]...   (the groups are below; default: build, to compile
# and test; --list only prints the names)
# Debian and Ubuntu: apt, with sudo when not root. macOS: brew. On another system it only names what
# is needed, and the build says what it misses.
set -euo pipefail

emulation='mmdebstrap qemu-user'  # scripts/cross.sh: libraries of the processor, and its emulator

debian_packages() {
  case $1 in
    build) echo g++ cmake make pkg-config gettext libcli11-dev libgtest-dev nettle-dev ;;
    check) echo clang clang-format clang-tidy cppcheck locales shellcheck ;;
    libcxx) echo clang libc++-dev libc++abi-dev googletest ;;
    valgrind) echo valgrind libc6-dbg ;;
    bench)
      echo gnuplot-nox jq libabsl-dev libbenchmark-dev libevent-dev libglib2.0-dev libmodpbase64-dev \
        libssl-dev
      ;;
    coverage) echo gcovr ;;
    docs) echo doxygen doxygen-awesome-css ;;
    fuzz) echo clang libclang-rt-dev ;;
    package) echo dpkg-dev file lintian ;;
    aarch64) echo g++-aarch64-linux-gnu "$emulation" ;;
    debian13) echo mmdebstrap ;;
    armhf) echo g++-arm-linux-gnueabihf "$emulation" ;;
    i386) echo g++-i686-linux-gnu "$emulation" ;;
    riscv64) echo g++-riscv64-linux-gnu "$emulation" ;;
    s390x) echo g++-s390x-linux-gnu "$emulation" ;;
    npm) echo npm ;;
    *) return 1 ;;
  esac
}

brew_packages() {
  case $1 in
    build) echo cmake pkgconf cli11 googletest gettext nettle ;;
    check) echo llvm cppcheck shellcheck ;;
    bench) echo abseil glib gnuplot google-benchmark jq libevent openssl@3 ;;
    coverage) echo gcovr ;;
    docs) echo doxygen ;;
    fuzz) echo llvm ;;
    *) return 1 ;;
  esac
}

installed_debian() { dpkg-query -W -f '${db:Status-Status} ${Package}\n' | sed -n 's/^installed //p'; }
installed_brew() { brew list -1; }

install_debian() {
  local as_root=
  [ "$(id -u)" = 0 ] || as_root=sudo
  $as_root apt-get update &&
    $as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "$@"
}
install_brew() { brew install "$@"; }

list=
if [ "${1:-}" = --list ]; then
  list=yes
  shift
fi
[ $# -gt 0 ] || set -- build
system=debian manager=dpkg-query
[ "$(uname)" != Darwin ] || system=brew manager=brew

wanted=
for name in "$@"; do
  packages=$("${system}_packages" "$name") || { echo "setup.sh: no group '$name'" >&2; exit 2; }
  wanted="$wanted $packages"
done
# shellcheck disable=SC2086  # one word a package
wanted=$(printf '%s\n' $wanted | sort -u)
if [ -n "$list" ]; then
  echo "$wanted"
  exit 0
fi
if ! command -v "$manager" >/dev/null; then
  # shellcheck disable=SC2086
  echo "setup.sh: without $manager nothing is installed; needed:" $wanted >&2
  exit 0
fi
missing=$(comm -23 <(echo "$wanted") <("installed_$system" | sort -u))
[ -n "$missing" ] || exit 0
if [ "$system" = debian ] && [ "$(id -u)" != 0 ] && ! command -v sudo >/dev/null; then
  echo 'setup.sh: packages are missing and there is no sudo; an administrator has to run' >&2
  # shellcheck disable=SC2086
  echo '  apt-get update && apt-get install -y --no-install-recommends' $missing >&2
  exit 1
fi

log=$(mktemp)
trap 'rm -f "$log"' EXIT
# shellcheck disable=SC2086
{
  echo "setup.sh: installing" $missing >&2
  if ! "install_$system" $missing >"$log" 2>&1; then
    cat "$log" >&2
    echo "setup.sh: the installation failed" >&2
    exit 1
  fi
}
