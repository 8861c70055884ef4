#!/usr/bin/env bash
# Installs what is missing, builds KOVO and starts the console in this terminal on a simulated host
# (default scenario, kept in ./sim-host so its state survives between runs). Ctrl-C ends the demo.
# Extra arguments go to the launcher, e.g. `scripts/demo.sh --scenario dhcp-no-lease`.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/install-deps.sh
cmake --preset release >/dev/null
cmake --build build/release -j "$(nproc)"

exec build/release/sim/kovo-sim run --dir "${KOVO_HOST_DIR:-$PWD/sim-host}" --scenario default "$@"
