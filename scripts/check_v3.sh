#!/usr/bin/env bash
# check_v3.sh: builds the library for processors with AVX2 and FMA, and lets what `check.sh release` built and tested see
# it in the place of the other one: the tests of the interface, of the program and of the examples. Ends with one line.
set -euo pipefail
cd "$(dirname "$0")/.."

if ! /lib64/ld-linux-x86-64.so.2 --help | grep -q 'x86-64-v3 (supported'; then
  echo "x86-64-v3: not tested, this processor has no AVX2 or no FMA"
  exit 0
fi
scripts/build.sh release-v3
export LD_LIBRARY_PATH=$PWD/out/release-v3/src/api
out/release/tools/zor/zor info --build | grep -q '^build    x86-64-v3,' || {
  echo "x86-64-v3: the library in $LD_LIBRARY_PATH is not the one that runs" >&2
  exit 1
}
log=out/release-v3/check.log
if ! ctest --preset release --label-regex '^shared_library$' --parallel "$(nproc)" >"$log" 2>&1; then
  grep -vE '^ *Start +[0-9]+: | Passed +[0-9.]+ sec$' "$log" >&2
  exit 1
fi
grep 'tests passed' "$log" | sed 's/^/x86-64-v3: /'
