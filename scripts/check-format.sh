#!/usr/bin/env bash
# Fails when a C++ file of the project differs from what .clang-format makes of it.
# With --fix, rewrites them instead.
set -euo pipefail
cd "$(dirname "$0")/.."

format=clang-format-14
command -v "$format" >/dev/null || format=clang-format
mapfile -t files < <(git ls-files '*.h' '*.cpp' | grep -v '^tests/fuzz/corpus/')
if [ "${1:-}" = --fix ]; then
    "$format" -i "${files[@]}"
    exit 0
fi
if ! "$format" --dry-run --Werror "${files[@]}" 2>/tmp/kovo-format.$$; then
    grep -E '^[^ ].*: (error|warning):' /tmp/kovo-format.$$ | sed -E 's/:[0-9]+:[0-9]+: .*//' | sort -u |
        sed 's/$/: differs from .clang-format (scripts\/check-format.sh --fix)/' >&2
    rm -f /tmp/kovo-format.$$
    exit 1
fi
rm -f /tmp/kovo-format.$$
echo "format: every file matches .clang-format"
