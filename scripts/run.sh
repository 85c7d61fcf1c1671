#!/usr/bin/env bash
# Builds Orrenvale and starts it on the inner solar system.
# Usage: scripts/run.sh [DATAFILE]   (from anywhere)
# Without a display the program runs on a virtual one (xvfb-run) for a few
# seconds and leaves a screenshot, orrenvale-screenshot.png, in the current
# directory.
set -euo pipefail

here="$(pwd)"
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"

scripts/install-deps.sh

cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build build/release -j "$(nproc)" --target orrenvale

world="${1:-examples/inner-solar-system.ovd}"
case "$world" in
  /*) ;;
  *) [ -e "$here/$world" ] && world="$here/$world" ;;
esac

if [ -n "${DISPLAY:-}" ] || [ -n "${WAYLAND_DISPLAY:-}" ]; then
  exec build/release/app/orrenvale "$world"
fi

shot="$here/orrenvale-screenshot.png"
echo "No display found: running Orrenvale on a virtual display (xvfb-run) for a few seconds."
xvfb-run -a -s "-screen 0 1600x1000x24" \
  build/release/app/orrenvale --screenshot "$shot" "$world"
echo "Screenshot of the running program saved as $shot"
