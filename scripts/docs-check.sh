#!/usr/bin/env bash
# Builds the API reference and lists what it lacks: the undocumented members
# of the exported headers, counted per header, then every warning.
#   scripts/docs-check.sh [BUILD_DIR]   (default: build)
set -uo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
[ -f "$build/CMakeCache.txt" ] || cmake -S . -B "$build" >/dev/null
log="$build/docs/warnings.log"
mkdir -p "$build/docs"
if cmake --build "$build" --target docs >"$log" 2>&1; then
  echo "docs: no warnings; reference in $build/docs/html/index.html"
  exit 0
fi
grep -h "not documented" "$log" | sort -u | cut -d: -f1 | sed 's#.*/include/##' | sort | uniq -c | sort -rn
grep -h "warning:\|error:" "$log" | sort -u
echo "docs: $(grep -h 'warning:\|error:' "$log" | sort -u | wc -l) warnings (full log: $log)"
exit 1
