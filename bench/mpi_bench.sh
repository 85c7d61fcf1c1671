#!/usr/bin/env bash
# Steps per second of orrenvale-batch on worlds of 4,000 and 20,000 bodies:
# alone on one thread, alone with its automatic thread choice, and under
# mpirun with 1 and 2 processes.
#
# Usage: bench/mpi_bench.sh [BUILD_DIR]   (default build/release, configured
#        with -DORRENVALE_MPI=ON)
#
# Each figure is (n2 - n1) / (t2 - t1) for runs of n1 and n2 steps, which
# leaves out start-up and reading the world; t1 and t2 are each the shortest
# of three runs, since the machine may be shared. The one-minute load average
# is printed before each row.
set -euo pipefail

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build="${1:-$root/build/release}"
batch="$build/batch/orrenvale-batch"
if [ ! -x "$batch" ]; then
  echo "mpi_bench: $batch: not built" >&2
  exit 1
fi
export OMPI_ALLOW_RUN_AS_ROOT=1 OMPI_ALLOW_RUN_AS_ROOT_CONFIRM=1
scratch="$(mktemp -d)"
trap 'rm -rf "$scratch"' EXIT

# n bodies of mass about 1 spread through a cube of side 2e4, radius 0.01,
# G the default: no pair ever touches, so every step runs the four force
# passes and both collision tests in full.
make_world() {
  awk -v n="$1" 'BEGIN {
    srand(1)
    print "<?xml version=\"1.0\" encoding=\"UTF-8\"?>"
    print "<plist version=\"1.0\"><dict><key>Bodies</key><dict>"
    for (k = 0; k < n; ++k) {
      printf "<key>%d</key><dict>", 100 + k
      printf "<key>Position X</key><real>%.17g</real>", (2 * rand() - 1) * 1e4
      printf "<key>Position Y</key><real>%.17g</real>", (2 * rand() - 1) * 1e4
      printf "<key>Position Z</key><real>%.17g</real>", (2 * rand() - 1) * 1e4
      printf "<key>Mass</key><real>%.17g</real>", 1 + (2 * rand() - 1) * 0.5
      printf "<key>Radius</key><real>0.01</real></dict>\n"
    }
    print "</dict></dict></plist>"
  }'
}

seconds() {
  local start end
  start=$(date +%s.%N)
  "$@" > /dev/null
  end=$(date +%s.%N)
  awk -v a="$start" -v b="$end" 'BEGIN { print b - a }'
}

# The shortest of three runs: other work on the machine only ever adds time.
shortest() {
  local best="" t
  for _ in 1 2 3; do
    t=$(seconds "$@")
    best=$(awk -v t="$t" -v b="$best" 'BEGIN { print (b == "" || t < b ? t : b) }')
  done
  echo "$best"
}

# steps_per_second N1 N2 WORLD COMMAND...: the command gets "-n STEPS WORLD".
steps_per_second() {
  local n1="$1" n2="$2" world="$3" t1 t2
  shift 3
  t1=$(shortest "$@" -n "$n1" "$world")
  t2=$(shortest "$@" -n "$n2" "$world")
  awk -v n="$((n2 - n1))" -v t1="$t1" -v t2="$t2" 'BEGIN { printf "%.3f", n / (t2 - t1) }'
}

load() {
  cut -d' ' -f1 /proc/loadavg
}

printf "%-8s %-28s %12s  %s\n" bodies run steps/s "load before"
for sizes in "4000 5 45" "20000 1 4"; do
  read -r n n1 n2 <<< "$sizes"
  world="$scratch/world-$n.ovd"
  make_world "$n" > "$world"
  for run in "alone, 1 thread" "alone, automatic threads" "mpirun -np 1" "mpirun -np 2"; do
    before=$(load)
    case "$run" in
      "alone, 1 thread") rate=$(steps_per_second "$n1" "$n2" "$world" env ORRENVALE_THREADS=1 "$batch") ;;
      "alone, automatic threads") rate=$(steps_per_second "$n1" "$n2" "$world" "$batch") ;;
      "mpirun -np 1") rate=$(steps_per_second "$n1" "$n2" "$world" mpirun -np 1 "$batch") ;;
      "mpirun -np 2") rate=$(steps_per_second "$n1" "$n2" "$world" mpirun -np 2 "$batch") ;;
    esac
    printf "%-8s %-28s %12s  %s\n" "$n" "$run" "$rate" "$before"
  done
done
