#!/usr/bin/env bash
# build.sh <preset> [target...]: installs missing packages, configures the preset where needed and builds it.
# On a terminal ninja keeps one line of progress; elsewhere it is silent unless something fails.
set -euo pipefail
cd "$(dirname "$0")/.."
preset=$1
shift

scripts/install_packages.sh
tree=out/$preset
if [ ! -e "$tree/configured" ] || [ CMakePresets.json -nt "$tree/configured" ]; then
  mkdir -p "$tree"
  cmake --preset "$preset" >"$tree/configure.log" 2>&1 || {
    cat "$tree/configure.log" >&2
    exit 1
  }
  touch "$tree/configured"
fi

build=(cmake --build --preset "$preset" ${1:+--target "$@"})
if [ -t 1 ]; then
  "${build[@]}"
else
  "${build[@]}" -- --quiet | { grep -vE '^(-- |ninja: no work to do)' || true; }
fi
