#!/usr/bin/env bash
# Runs every fuzz target (or those named) for RUNS executions each, one after
# another at low priority, with AddressSanitizer (leaks included) and
# UndefinedBehaviorSanitizer; prints executions, new corpus entries and the
# outcome per target, and fails when any target crashed, leaked or timed out.
#   scripts/fuzz-long.sh [RUNS] [NAME...]     RUNS defaults to 10,000,000
# Inputs that fail are kept in build-fuzz/artifacts/; the grown corpus of
# each target in build-fuzz/long-corpus/NAME/ (seeds are never written).
set -euo pipefail
cd "$(dirname "$0")/.."
runs="${1:-10000000}"
shift || true
CC=clang CXX=clang++ cmake -S . -B build-fuzz -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKXRENDER_BUILD_TESTS=OFF \
  -DKXRENDER_FUZZ=ON -DKXRENDER_SANITIZE="address,undefined" >/dev/null
names=("$@")
if [ ${#names[@]} -eq 0 ]; then
  for dir in fuzz/corpus/*/; do names+=("$(basename "$dir")"); done
fi
targets=()
for n in "${names[@]}"; do targets+=("fuzz_$n"); done
nice cmake --build build-fuzz -j"$(nproc)" --target "${targets[@]}"
# A small quarantine: the default 256 MB one cycles its pages through the
# kernel on every input that allocates much, halving the rate.
export ASAN_OPTIONS="detect_leaks=1:quarantine_size_mb=16"
export UBSAN_OPTIONS="halt_on_error=1:print_stacktrace=1"
mkdir -p build-fuzz/artifacts
failed=0
summary=()
for n in "${names[@]}"; do
  corpus="build-fuzz/long-corpus/$n"
  log="build-fuzz/long-$n.log"
  mkdir -p "$corpus"
  echo "fuzz-long: $n, $runs executions (log $log)"
  start=$(date +%s)
  status=ok
  nice -n 19 "build-fuzz/fuzz/fuzz_$n" -runs="$runs" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 \
    -artifact_prefix="build-fuzz/artifacts/$n-" "$corpus" "fuzz/corpus/$n" >"$log" 2>&1 || status=FAILED
  execs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -1)
  if grep -q "ERROR: LeakSanitizer" "$log"; then status="FAILED (leak)"; fi
  if grep -q "ALARM: working on the last Unit\|ERROR: libFuzzer: timeout" "$log"; then status="FAILED (timeout)"; fi
  [ "$status" = ok ] || failed=1
  summary+=("$(printf '%-14s %12s executions %6ss corpus %5s  %s' "$n" "${execs:-?}" "$(( $(date +%s) - start ))" \
    "$(ls "$corpus" | wc -l)" "$status")")
done
printf '%s\n' "${summary[@]}"
exit $failed
