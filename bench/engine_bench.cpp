// Speed of the force pass and of whole steps. The machine this runs on may be
// shared: the load average at the start is recorded in the context of the
// report, next to the figures.
#include <benchmark/benchmark.h>

#include <fstream>
#include <random>
#include <string>

#include "engine/speed.h"
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
std::string label(int threads) {
  const char* path = threads == 0 ? "plain" : kernelPathName(kernelPath());
  return std::string(path) + (threads < 0 ? " auto" : "") + ", load " + loadAverage();
}

// The path chosen at start-up (ORRENVALE_SIMD), or the fastest when that is
// the reference path, which the threads argument 0 selects instead.
KernelPath vectorPath() {
  static const KernelPath chosen =
      kernelPath() == KernelPath::Reference ? fastestKernelPath() : kernelPath();
  return chosen;
}

// Path and thread count for one run; restored afterwards. threads: 0 for the
// reference path, -1 for the automatic thread count.
class Choice {
 public:
  Choice(KernelPath path, int threads) : path_(kernelPath()), threads_(passThreads()) {
    setKernelPath(threads == 0 ? KernelPath::Reference : path);
    setPassThreads(threads < 0 ? 0 : threads);
  }
  ~Choice() {
    setKernelPath(path_);
    setPassThreads(threads_);
  }
  Choice(const Choice&) = delete;
  Choice& operator=(const Choice&) = delete;

 private:
  KernelPath path_;
  int threads_;
};

// Arguments: bodies, threads (0: the plain pass over the body list, -1: the
// automatic choice).
void BM_ForcePass(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const int threads = static_cast<int>(state.range(1));
  World world;
  fill(world, n);
  Choice choice(vectorPath(), threads);
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
  state.SetLabel(label(threads));
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
  Choice choice(vectorPath(), threads);
  for (auto _ : state) {
    world.step();
  }
  state.counters["steps/s"] =
      benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
  // A step makes four force passes over every unordered pair.
  const double pairsPerStep = 4.0 * n * (n - 1) / 2.0;
  state.counters["pairs/s"] = benchmark::Counter(
      pairsPerStep * static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
  state.SetLabel(label(threads));
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
