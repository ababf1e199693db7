#!/usr/bin/env bash
# Runs every fuzz target of a build for a while, starting from its committed
# seed corpus, and prints the executions and coverage each reached.
#   fuzz/run.sh BUILD_DIR SECONDS
# New inputs go to BUILD_DIR/fuzz-corpus/<target>, crashes to
# BUILD_DIR/fuzz-artifacts/. Exits non-zero if any target failed.
set -uo pipefail

build=${1:?build directory}
seconds=${2:?seconds per target}
source_dir=$(cd "$(dirname "$0")" && pwd)
mkdir -p "$build/fuzz-artifacts"

failed=()
summary=()
for target in "$build"/fuzz/*_fuzzer; do
  [[ -x $target ]] || continue
  name=$(basename "$target")
  work="$build/fuzz-corpus/$name"
  log="$build/fuzz-artifacts/$name.log"
  mkdir -p "$work"
  echo "=== fuzz: $name for ${seconds}s"
  # Output of the library itself is closed (-close_fd_mask=3); libFuzzer and
  # the sanitizers keep their own copy of stderr for reports.
  "$target" -max_total_time="$seconds" -timeout=60 -print_final_stats=1 \
    -close_fd_mask=3 -artifact_prefix="$build/fuzz-artifacts/$name-" \
    "$work" "$source_dir/corpus/$name" >"$log" 2>&1
  status=$?
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -1)
  cov=$(grep -oE 'cov: [0-9]+ ft: [0-9]+' "$log" | tail -1)
  line="$name: ${runs:-?} executions, ${cov:-no coverage line}"
  if [[ $status -ne 0 ]]; then
    failed+=("$name")
    line+=" FAILED (exit $status, log $log)"
    grep -E 'ERROR|runtime error|fuzz check failed|Test unit written' "$log" |
      head -5
  fi
  summary+=("$line")
done

echo "=== fuzz summary"
printf '%s\n' "${summary[@]}"
if [[ ${#summary[@]} -eq 0 ]]; then
  echo "no fuzz targets in $build/fuzz" >&2
  exit 1
fi
if [[ ${#failed[@]} -ne 0 ]]; then
  echo "FAILED fuzz targets: ${failed[*]}"
  exit 1
fi
