#!/usr/bin/env bash
# fuzz.sh [seconds]: builds the fuzz targets and runs each for that time (60), from the golden files and what earlier
# runs found. Silent but for one line per target unless a target fails; what it failed on stays in out/fuzz/findings.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-60}

scripts/install_packages.sh packages-fuzz.txt
scripts/build.sh fuzz fuzz/all
mkdir -p out/fuzz/findings
# What the library says on stderr is closed (a reader tells of every annotation that differs); what the fuzzer and the
# sanitizers say is not.
status=0
for program in out/fuzz/fuzz/*_fuzz; do
  name=$(basename "$program" _fuzz)
  corpus=out/fuzz/corpus/$name
  mkdir -p "$corpus"
  if ASAN_OPTIONS=detect_leaks=1:allocator_may_return_null=1 "$program" -max_total_time="$seconds" -timeout=5 \
    -rss_limit_mb=2048 -max_len=65536 -close_fd_mask=2 -artifact_prefix="out/fuzz/findings/$name-" \
    "$corpus" "tests/data/$name" >"out/fuzz/$name.log" 2>&1; then
    grep -aE '^Done ' "out/fuzz/$name.log" | sed "s/^/$name: /"
  else
    tail -n 40 "out/fuzz/$name.log" >&2
    status=1
  fi
done
exit $status
