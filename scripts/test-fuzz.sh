#!/usr/bin/env bash
# Builds the libFuzzer targets with clang (AddressSanitizer and
# UndefinedBehaviorSanitizer, no recovery) and runs each for a short, fixed
# number of executions over its seed corpus; any crash, leak or timeout fails.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh
echo "fuzz: configuring build-fuzz"
CC=clang CXX=clang++ cmake -S . -B build-fuzz -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKXRENDER_BUILD_TESTS=OFF \
  -DKXRENDER_FUZZ=ON -DKXRENDER_SANITIZE="address,undefined" >/dev/null
echo "fuzz: building"
cmake --build build-fuzz -j"$(nproc)" --target kx_fuzzers
echo "fuzz: running"
export ASAN_OPTIONS="detect_leaks=1"
export UBSAN_OPTIONS="halt_on_error=1:print_stacktrace=1"
exec ctest --test-dir build-fuzz -L fuzz --output-on-failure -j"$(nproc)"
