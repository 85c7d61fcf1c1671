// Cost of one world step. Bodies sit on a jittered lattice with tiny radii,
// so no pair ever touches and every step runs the full Runge-Kutta path.
#include <benchmark/benchmark.h>

#include <cmath>
#include <random>

#include "engine/world.h"

namespace {

void fillWorld(World& world, int n) {
  world.gravitationalConstant = 1e-3;
  std::mt19937_64 rng(42);
  std::uniform_real_distribution<double> jitter(-0.25, 0.25);
  const int side = static_cast<int>(std::ceil(std::cbrt(static_cast<double>(n))));
  for (int i = 0; i < n; ++i) {
    Body* b = world.createBody();
    b->position.x = i % side + jitter(rng);
    b->position.y = (i / side) % side + jitter(rng);
    b->position.z = i / (side * side) + jitter(rng);
    b->velocity.x = jitter(rng) * 0.01;
    b->radius = 1e-6;
    b->mass = 1.0;
  }
}

void BM_WorldStep(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  World world;
  fillWorld(world, n);
  for (auto _ : state) {
    world.step();
  }
  // Four force passes per step, each over every unordered pair.
  const double pairsPerStep = 4.0 * n * (n - 1) / 2.0;
  state.counters["pairs/s"] =
      benchmark::Counter(pairsPerStep, benchmark::Counter::kIsIterationInvariantRate);
  state.counters["steps/s"] =
      benchmark::Counter(1.0, benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(BM_WorldStep)->Arg(3)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);

void BM_ForcePass(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  World world;
  fillWorld(world, n);
  for (auto _ : state) {
    world.clearAllForces();
    world.computeForces();
  }
  state.counters["pairs/s"] =
      benchmark::Counter(n * (n - 1) / 2.0, benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(BM_ForcePass)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
