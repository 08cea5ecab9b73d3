#!/usr/bin/env bash
# Installs what is missing, builds and runs all tests. The one argument names a preset: release (default), debug, asan, tsan.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/setup.sh
preset=${1:-release}
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset"
ctest --preset "$preset" -j "$(nproc)"
