#!/usr/bin/env bash
# Formats the sources in place; with --check only reports what differs.
# usage: scripts/format.sh [--check]
set -euo pipefail
cd "$(dirname "$0")/.."

mode=(-i)
[ "${1:-}" != --check ] || mode=(--dry-run --Werror)
git ls-files -z '*.h' '*.cpp' | xargs -0r clang-format "${mode[@]}"
