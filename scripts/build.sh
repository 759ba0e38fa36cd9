#!/usr/bin/env bash
# Configures and builds into a directory: scripts/build.sh [DIR] [extra cmake options]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
dir=${1:-$root/build}
shift || true
cmake --preset dev -S "$root" -B "$dir" "$@" >/dev/null
cmake --build "$dir" -j"$(nproc)"
