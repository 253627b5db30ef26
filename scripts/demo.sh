#!/usr/bin/env bash
# Installs what is missing, builds in Release and renders the demo frame.
# Extra arguments go to kxdemo (for example --out FILE --size 1920x1080).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh
echo "demo: configuring build-release"
cmake -S . -B build-release -DCMAKE_BUILD_TYPE=Release -DKXRENDER_BUILD_TESTS=OFF >/dev/null
echo "demo: building"
cmake --build build-release -j"$(nproc)" --target kxdemo
echo "demo: rendering"
./build-release/apps/kxdemo "$@"
