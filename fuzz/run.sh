#!/usr/bin/env bash
# Runs fuzz targets from the fuzz preset's build, each until 10 million executions or an hour,
# whichever comes first, and prints one line per target: executions, seconds, and the outcome.
# New inputs go to a scratch corpus beside the seeds; a crashing input is left as crash-* in OUT.
#
#   fuzz/run.sh OUT TARGET...     e.g. fuzz/run.sh /tmp/fuzz-out storeload sentlog
set -uo pipefail
here=$(cd "$(dirname "$0")" && pwd)
bin="$here/../build-fuzz/bin"
out=${1:?output folder}
shift
mkdir -p "$out"
for t in "$@"; do
  mkdir -p "$out/$t"
  start=$(date +%s)
  # Readers that write files work in memory-backed scratch folders.
  TMPDIR=/dev/shm "$bin/fuzz_$t" "$out/$t" "$here/corpus/$t" -runs=10000000 -max_total_time=3600 \
    -print_final_stats=1 -artifact_prefix="$out/crash-$t-" >"$out/$t.log" 2>&1
  rc=$?
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$out/$t.log")
  echo "$t executions=${runs:-?} seconds=$(($(date +%s) - start)) $([ $rc = 0 ] && echo ok || echo "FAILED rc=$rc")"
done
