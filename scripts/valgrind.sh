#!/usr/bin/env bash
# Memcheck over the test programs that need no GL context (a GL driver's own
# allocations would need suppressions; these need none): every invalid read
# or write, use of an uninitialised value, and every leak, definite,
# indirect or possible, fails the run.
#   scripts/valgrind.sh [PROGRAM...]   (default: the programs below)
set -euo pipefail
cd "$(dirname "$0")/.."
programs=("$@")
[ ${#programs[@]} -gt 0 ] || programs=(test_support test_geometry test_textures test_models)
cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
nice cmake --build build -j"$(nproc)" --target "${programs[@]}"
failed=0
for p in "${programs[@]}"; do
  bin=$(find build/tests -maxdepth 1 -name "$p" -type f | head -1)
  echo "valgrind: $p"
  log="build/valgrind-$p.log"
  if nice valgrind --tool=memcheck --error-exitcode=99 --leak-check=full --show-leak-kinds=definite,indirect,possible \
      --errors-for-leak-kinds=definite,indirect,possible --num-callers=30 "$bin" --gtest_brief=1 >"$log" 2>&1; then
    grep -E "ERROR SUMMARY|definitely lost|indirectly lost|possibly lost|All heap blocks" "$log" | sed 's/^==[0-9]*== /  /'
  else
    failed=1
    echo "  FAILED (see $log)"
    grep -E "ERROR SUMMARY|Invalid|uninitialised|lost in" "$log" | head -20 | sed 's/^==[0-9]*== /  /'
  fi
done
exit $failed
