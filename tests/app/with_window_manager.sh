#!/usr/bin/env bash
# Runs a command on a virtual display of its own with a window manager
# (openbox), as a user's desktop has one: stacking, focus, activation and
# close boxes then behave as they do for a user, which a bare X server
# cannot show.
set -euo pipefail

scratch="$(mktemp -d)"
pids=()
cleanup() {
  for pid in "${pids[@]}"; do
    kill "$pid" 2>/dev/null || true
  done
  rm -rf "$scratch"
}
trap cleanup EXIT

# The server picks a free display and writes its number to descriptor 3.
Xvfb -displayfd 3 -screen 0 1600x1000x24 -nolisten tcp 3>"$scratch/display" 2>"$scratch/xvfb.log" &
pids+=($!)
for _ in $(seq 200); do
  [ -s "$scratch/display" ] && break
  sleep 0.05
done
export DISPLAY=":$(head -n1 "$scratch/display")"

openbox --sm-disable >"$scratch/openbox.log" 2>&1 &
pids+=($!)
# Ready when it has announced itself on the root window.
for _ in $(seq 200); do
  if xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q 'window id'; then
    break
  fi
  sleep 0.05
done

"$@"
