#!/usr/bin/env bash
# Installs what is missing, checks the layers and the format, builds KOVO in the checked configuration
# (warnings as errors) and under AddressSanitizer + UndefinedBehaviorSanitizer, and runs every test in both.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/install-deps.sh

jobs=$(nproc)
status=0
echo "== layers and format =="
bash scripts/check-layers.sh || status=1
bash scripts/check-format.sh || status=1
for preset in dev asan; do
  echo "== ${preset}: configure and build =="
  cmake --preset "$preset" >/dev/null
  cmake --build "build/$preset" -j "$jobs"
  echo "== ${preset}: unit, host and harness tests =="
  ctest --test-dir "build/$preset" --output-on-failure -j "$jobs" --timeout 600 -LE 'e2e|guest' || status=1
  # The end-to-end tests each boot a simulated host and drive the console through a terminal by its
  # screen; they wait on screens far more than they compute, so two run at a time.
  echo "== ${preset}: end-to-end tests =="
  ctest --test-dir "build/$preset" --output-on-failure -j 2 --timeout 600 -L e2e || status=1
  if [ "$preset" = dev ]; then
    # The console's package on a real Debian 12 host: a qemu guest booted once, driven through its serial
    # console. Its image takes a Release build of the package and Debian's packages (cached between runs).
    echo "== Debian guest =="
    ctest --test-dir build/dev --output-on-failure -L guest || status=1
  fi
done
exit $status
