#!/usr/bin/env bash
# The long soak: the reference tower (tower-M) under churn for FRAMES frames
# (100,000 unless given) at low priority, printing resident memory, display
# lists held and live, and the deletion queue at checkpoints. Fails when a
# display list leaked. Extra arguments go to kxsoak (--size, --tower).
#   scripts/soak.sh [FRAMES] [kxsoak options]
set -euo pipefail
cd "$(dirname "$0")/.."
frames="${1:-100000}"
shift || true
cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
nice cmake --build build -j"$(nproc)" --target kxsoak
run=(nice -n 19 build/apps/kxsoak --frames "$frames" "$@")
if [ -z "${DISPLAY:-}" ] && command -v xvfb-run >/dev/null; then
  exec xvfb-run -a -s "-screen 0 1024x768x24" "${run[@]}"
fi
exec "${run[@]}"
