#!/usr/bin/env bash
# From a fresh clone to a measurement: installs what is missing, builds, and finds the mains hum in the recorded
# electrocardiogram that ships with the project. Arguments replace the ones given here.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/setup.sh
cmake --preset release >/dev/null
cmake --build --preset release --target sigvex_tool >/dev/null
if [ $# -eq 0 ]; then set -- spectrum examples/data/ecg.dsp --unit mV --from-hz 50 --peaks 3; fi
echo "\$ sigvex $*"
exec build/release/tools/sigvex "$@"
