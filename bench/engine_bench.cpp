// Speed of the force pass and of whole steps. The machine this runs on may be
// shared: the load average at the start is recorded in the context of the
// report, next to the figures.
#include <benchmark/benchmark.h>

#include <fstream>
#include <random>
#include <string>

#include "engine/fast_pass.h"
#include "engine/world.h"

namespace {

// Bodies spread so thinly, and pulling so weakly, that no pair ever touches:
// every step runs the full Runge-Kutta scheme and both collision passes.
void fill(World& world, int n) {
  std::mt19937_64 rng(1);
  std::uniform_real_distribution<double> unit(-1.0, 1.0);
  for (int k = 0; k < n; ++k) {
    Body* b = world.createBody();
    b->position = Vector::of(unit(rng) * 1e4, unit(rng) * 1e4, unit(rng) * 1e4);
    b->mass = 1.0 + unit(rng) * 0.5;
    b->radius = 0.01;
  }
}

std::string loadAverage() {
  std::ifstream in("/proc/loadavg");
  std::string line;
  std::getline(in, line);
  return line.substr(0, line.find(' '));
}

// The label names the path and the one-minute load average at the end.
std::string label(World& world, int threads) {
  const char* path = threads == 0 ? "plain" : kernelPathName(world.fastPass().path());
  return std::string(path) + (threads < 0 ? " auto" : "") + ", load " + loadAverage();
}

// The world's path and thread count for one run: threads 0 for the reference
// path, -1 for the automatic thread count; otherwise the path chosen at
// start-up (ORRENVALE_SIMD), or the fastest when that is the reference path.
void choose(World& world, int threads) {
  FastPass& pass = world.fastPass();
  if (threads == 0) {
    pass.setPath(KernelPath::Reference);
  } else if (pass.path() == KernelPath::Reference) {
    pass.setPath(fastestKernelPath());
  }
  pass.setForcedThreads(threads < 0 ? 0 : threads);
}

// Arguments: bodies, threads (0: the plain pass over the body list, -1: the
// automatic choice).
void BM_ForcePass(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const int threads = static_cast<int>(state.range(1));
  World world;
  fill(world, n);
  choose(world, threads);
  for (auto _ : state) {
    if (threads == 0) {
      world.computeForcesPlain();
    } else {
      world.computeForces();
    }
    benchmark::ClobberMemory();
  }
  const double pairs = static_cast<double>(n) * (n - 1) / 2.0;
  state.counters["pairs/s"] = benchmark::Counter(pairs * static_cast<double>(state.iterations()),
                                                 benchmark::Counter::kIsRate);
  state.SetLabel(label(world, threads));
}
BENCHMARK(BM_ForcePass)
    ->ArgNames({"bodies", "threads"})
    ->ArgsProduct({{100, 1000, 4000}, {0, 1, 2, -1}})
    ->Unit(benchmark::kMicrosecond)
    ->UseRealTime();

// Arguments: bodies, threads (0: the reference engine throughout, -1: the
// automatic choice).
void BM_Step(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const int threads = static_cast<int>(state.range(1));
  World world;
  fill(world, n);
  choose(world, threads);
  for (auto _ : state) {
    world.step();
  }
  state.counters["steps/s"] =
      benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
  // A step makes four force passes over every unordered pair.
  const double pairsPerStep = 4.0 * n * (n - 1) / 2.0;
  state.counters["pairs/s"] = benchmark::Counter(
      pairsPerStep * static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
  state.SetLabel(label(world, threads));
}
BENCHMARK(BM_Step)
    ->ArgNames({"bodies", "threads"})
    ->ArgsProduct({{3, 100, 1000, 4000}, {0, 1, 2, -1}})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  benchmark::AddCustomContext("load average at start", loadAverage());
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
