#!/usr/bin/env bash
# Builds this tree's Debian package and a guest image with it installed, at $1.
set -euo pipefail
cd "$(dirname "$0")/../.."
deb=$(bash scripts/package.sh | tail -1)
guest/kovo-vm image --deb "$deb" --out "$1"
