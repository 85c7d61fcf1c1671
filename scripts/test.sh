#!/usr/bin/env bash
# Builds Orrenvale and runs every test twice: in a release build, and in a
# debug build under AddressSanitizer and UndefinedBehaviorSanitizer. The
# Python module is built and tested in the release build only.
# Usage: scripts/test.sh            (from anywhere)
set -euo pipefail

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"

scripts/install-deps.sh

jobs="$(nproc)"

# Windows need a display; without one the tests run on a virtual one. The
# server must not reset when its last client leaves: the tests are many short
# processes, and one that connects during a reset fails to start.
run_ctest() {
  local dir="$1"
  shift
  if [ -z "${DISPLAY:-}" ]; then
    xvfb-run -a -s "-screen 0 1280x1024x24 -noreset" ctest --test-dir "$dir" --output-on-failure -j "$jobs" "$@"
  else
    ctest --test-dir "$dir" --output-on-failure -j "$jobs" "$@"
  fi
}

# The runner's MPI build and its tests under mpirun, when MPI is installed
# (install-deps.sh installs it). The tests allow Open MPI to run as root, as
# CI does, themselves.
mpi=OFF
if command -v mpirun > /dev/null && command -v mpicxx > /dev/null; then
  mpi=ON
fi

echo "== release build"
cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=Release -DORRENVALE_WERROR=ON \
  -DORRENVALE_MPI="$mpi"
cmake --build build/release -j "$jobs"
run_ctest build/release

echo "== Python module (pytest under Debian's interpreter, for which it is built)"
ORRENVALE_BUILD="$root/build/release" /usr/bin/python3 -m pytest -q -p no:cacheprovider tests/python

echo "== sanitized build (ASan + UBSan)"
cmake -S . -B build/asan -G Ninja -DCMAKE_BUILD_TYPE=Debug -DORRENVALE_WERROR=ON \
  -DORRENVALE_SANITIZE=ON -DORRENVALE_BUILD_BENCHMARKS=OFF \
  -DORRENVALE_MPI="$mpi"
cmake --build build/asan -j "$jobs"
export ASAN_OPTIONS="detect_leaks=1:abort_on_error=0"
export LSAN_OPTIONS="suppressions=$root/tests/lsan.supp:print_suppressions=0"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"
# The leak checker's own tracer now and then crashes ("Tracer caught signal
# 11") while the graphics driver's threads are exiting. A test that failed
# that way, and only that way, gets one more run; any other failure fails the
# build.
if ! run_ctest build/asan; then
  log=build/asan/Testing/Temporary/LastTest.log
  rerun=()
  while IFS=: read -r _ name; do
    # The failed test's output: from its "Testing:" line to the next one.
    if awk -v t="$name" '$0 ~ "^[0-9]+/[0-9]+ Testing: " { on = ($3 == t) } on' "$log" |
      grep -q "Tracer caught signal"; then
      rerun+=("$name")
    else
      echo "$name failed in the sanitized build"
      exit 1
    fi
  done <build/asan/Testing/Temporary/LastTestsFailed.log
  pattern="^($(IFS='|'; echo "${rerun[*]}"))\$"
  echo "== again, after the leak checker's tracer crashed: ${rerun[*]}"
  run_ctest build/asan -R "$pattern"
fi

echo "== fuzzing the datafile reader and loader (clang, libFuzzer + ASan)"
# A short bounded run on every test: the examples are the seeds, new inputs go
# to a scratch corpus in the build tree, and any crash fails the run.
CC=clang CXX=clang++ cmake -S . -B build/fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DORRENVALE_WERROR=ON -DORRENVALE_FUZZ=ON -DORRENVALE_BUILD_TESTS=OFF -DORRENVALE_BUILD_BENCHMARKS=OFF
cmake --build build/fuzz -j "$jobs" --target document_fuzz
mkdir -p build/fuzz/corpus
build/fuzz/tests/fuzz/document_fuzz -dict=tests/fuzz/plist.dict -max_total_time=20 -timeout=10 \
  -rss_limit_mb=2048 -print_final_stats=1 -artifact_prefix=build/fuzz/ build/fuzz/corpus examples

echo "== all tests passed"
