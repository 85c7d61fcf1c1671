#!/usr/bin/env bash
# Builds Orrenvale and runs it. Until the desktop application exists this
# steps the inner solar system for ten simulated years without a display and
# prints a summary of the final state.
# Usage: scripts/run.sh            (from anywhere)
set -euo pipefail

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"

scripts/install-deps.sh

cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build build/release -j "$(nproc)" --target orrenvale-batch

# One step is a thousandth of a year.
exec build/release/batch/orrenvale-batch --steps 10000 --summary --progress \
  examples/inner-solar-system.ovd
