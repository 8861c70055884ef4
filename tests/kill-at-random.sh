#!/bin/bash
# Kills at random moments of the console's writes, many of them: TOTAL kills (default 1000), two fifths
# during `kovo-sim set`, three tenths during the network window's change application and three tenths
# during resolve tests (SIGKILL and SIGHUP). Each kind prints what its kills found. The end-to-end run
# has a few of each kind; this is the long run. Needs a built tree (BUILD, default build/dev) and root.
#   tests/kill-at-random.sh [TOTAL]
set -euo pipefail
cd "$(dirname "$0")/.."
total=${1:-1000}
binary=${BUILD:-build/dev}/tests/e2e/kovo_e2e_tests
[ -x "$binary" ] || { echo "no $binary: build first (cmake --build ${BUILD:-build/dev})" >&2; exit 2; }
log=$(mktemp)
trap 'rm -f "$log"' EXIT
run() {
    local result=0
    KOVO_KILLS=$1 "$binary" --gtest_filter="KillAtRandom.$2" >"$log" 2>&1 || result=$?
    grep -E "kills|seed|one change application" "$log" || true
    grep -A3 "Failure" "$log" || true
    return $result
}
status=0
run $((total * 4 / 10)) 'StoreSet*' || status=1
run $((total * 3 / 10)) 'ChangeApplication*' || status=1
run $((total - total * 4 / 10 - total * 3 / 10)) 'ResolveTest*' || status=1
exit $status
