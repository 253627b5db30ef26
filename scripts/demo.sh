#!/usr/bin/env bash
# Installs what is missing, builds in Release and renders the demo frame.
# Extra arguments go to kxdemo (for example --out FILE --size 1920x1080, or
# a model file: scripts/demo.sh house.ifc --out house.png). Paths are taken
# from where the script is run; the frame goes to out/kxdemo.png in the
# project unless --out says otherwise.
set -euo pipefail
caller="$PWD"
root="$(cd "$(dirname "$0")/.." && pwd)"
cd "$root"
scripts/deps.sh
echo "demo: configuring build-release"
cmake -S . -B build-release -DCMAKE_BUILD_TYPE=Release -DKXRENDER_BUILD_TESTS=OFF >/dev/null
echo "demo: building"
cmake --build build-release -j"$(nproc)" --target kxdemo
echo "demo: rendering"
out=(--out "$root/out/kxdemo.png")
for a in "$@"; do [ "$a" = "--out" ] && out=(); done
cd "$caller"
"$root/build-release/apps/kxdemo" "${out[@]}" "$@"
