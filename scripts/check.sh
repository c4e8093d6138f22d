#!/usr/bin/env bash
# check.sh <preset>: builds the preset and runs its tests on all cores. When all is well it ends with the one line that
# counts the tests; otherwise it shows the output of the tests that failed.
set -euo pipefail
cd "$(dirname "$0")/.."
preset=$1

scripts/build.sh "$preset"
log=out/$preset/check.log
if ! ctest --preset "$preset" --parallel "$(nproc)" >"$log" 2>&1; then
  grep -vE '^ *Start +[0-9]+: | Passed +[0-9.]+ sec$' "$log" >&2
  exit 1
fi
grep 'tests passed' "$log"
