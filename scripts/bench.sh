#!/usr/bin/env bash
# Installs what is missing, builds Release with the benchmarks and prints the
# tower table (tower-M and tower-XL, off-screen 1280 x 720 on Mesa).
#   scripts/bench.sh [--sizes=M,XL] [extra kxbench flags]
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh
cmake -S . -B build-bench -DCMAKE_BUILD_TYPE=Release -DKXRENDER_BUILD_TESTS=OFF -DKXRENDER_BUILD_BENCH=ON >/dev/null
cmake --build build-bench -j"$(nproc)" --target kxbench
# Mesa's software rasteriser: a fixed thread count keeps figures comparable.
export LP_NUM_THREADS=2
exec build-bench/bench/kxbench "$@"
