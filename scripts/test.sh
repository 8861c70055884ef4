#!/usr/bin/env bash
# Installs what is missing, builds KOVO in the checked configuration (warnings as errors) and under
# AddressSanitizer + UndefinedBehaviorSanitizer, and runs every test in both.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/install-deps.sh

jobs=$(nproc)
status=0
for preset in dev asan; do
  echo "== ${preset}: configure and build =="
  cmake --preset "$preset" >/dev/null
  cmake --build "build/$preset" -j "$jobs"
  echo "== ${preset}: tests =="
  if ! ctest --test-dir "build/$preset" --output-on-failure -j "$jobs" --timeout 600; then
    status=1
  fi
done
exit $status
