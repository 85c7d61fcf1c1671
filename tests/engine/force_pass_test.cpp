#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "engine/distributed_passes.h"
#include "engine/fast_pass.h"
#include "engine/speed.h"
#include "engine/world.h"
#include "test_support.h"

// The fast passes must give exactly the bits of the plain passes over the
// body list, on every instruction set and with any number of threads (any
// two NaNs match, see bitsOf).

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// parts > 0: the passes are split into that many blocks, as processes that
// share them out do.
struct Config {
  KernelPath path;
  int threads;
  int parts = 0;
  std::string name() const {
    return std::string(kernelPathName(path)) + " x" + std::to_string(threads) +
           (parts > 0 ? " in " + std::to_string(parts) + " parts" : "");
  }
};

// Every packed path this processor runs, each on one and on two threads and
// split into 1, 2, 3 and 5 parts; and the reference path split into 3, which
// has no block form of its own.
std::vector<Config> fastConfigs() {
  std::vector<Config> configs;
  for (KernelPath p : {KernelPath::Sse2, KernelPath::Avx2, KernelPath::Avx512}) {
    if (kernelPathSupported(p)) {
      configs.push_back({p, 1});
      configs.push_back({p, 2});
      for (int parts : {1, 2, 3, 5}) {
        configs.push_back({p, 1, parts});
      }
    }
  }
  configs.push_back({KernelPath::Reference, 1, 3});
  return configs;
}

// A world of n bodies in a cube of the given scale. Starting forces are
// random and include both signed zeros, since the pass adds to what the
// accumulators hold.
void fillRandom(World& world, int n, double scale, uint32_t seed) {
  std::mt19937_64 rng(seed);
  std::uniform_real_distribution<double> unit(-1.0, 1.0);
  for (int k = 0; k < n; ++k) {
    Body* b = world.createBody();
    b->position = Vector::of(unit(rng) * scale, unit(rng) * scale, unit(rng) * scale);
    b->mass = std::fabs(unit(rng)) * 1e3;
    const double f[] = {0.0, -0.0, unit(rng)};
    b->force = Vector::of(f[k % 3], f[(k + 1) % 3], f[(k + 2) % 3]);
  }
  world.gravitationalConstant = 1.0;
}

std::vector<Vector> forcesOf(const World& world) {
  std::vector<Vector> forces;
  forEachItem<Body>(*world.bodies, [&](const Body& b) { forces.push_back(b.force); });
  return forces;
}

void setForces(World& world, const std::vector<Vector>& forces) {
  size_t k = 0;
  forEachItem<Body>(*world.bodies, [&](Body& b) { b.force = forces[k++]; });
}

// Does in one process what processes that share out the passes do together:
// every part computes its block from the same starting accumulators, and the
// blocks are put together; the touch test is the union of the parts' rows.
// A block pass that touches an accumulator outside its block fails the test.
class SequentialParts : public DistributedPasses {
 public:
  explicit SequentialParts(int parts) : parts_(parts) {}
  SequentialParts(const SequentialParts&) = delete;
  SequentialParts& operator=(const SequentialParts&) = delete;

  void computeForces(World& world) override {
    const std::vector<Vector> start = forcesOf(world);
    std::vector<Vector> result = start;
    const int n = activeCount(world);
    for (int p = 0; p < parts_; ++p) {
      const int begin = forceBlockStart(n, parts_, p);
      const int end = forceBlockStart(n, parts_, p + 1);
      setForces(world, start);
      world.computeBlockForces(begin, end);
      size_t k = 0;
      int active = 0;
      forEachItem<Body>(*world.bodies, [&](const Body& b) {
        const bool inBlock = b.active && active >= begin && active < end;
        active += b.active ? 1 : 0;
        if (inBlock) {
          result[k] = b.force;
        } else if (!sameBits(b.force, start[k])) {
          ADD_FAILURE() << "part " << p << " changed the force on body " << k;
        }
        ++k;
      });
    }
    setForces(world, result);
  }

  bool mayTouch(World& world) override {
    const int n = activeCount(world);
    bool any = false;
    for (int p = 0; p < parts_; ++p) {
      any = world.mayTouchFromRows(touchRowStart(n, parts_, p), touchRowStart(n, parts_, p + 1)) ||
            any;
    }
    return any;
  }

 private:
  static int activeCount(const World& world) {
    int n = 0;
    forEachItem<Body>(*world.bodies, [&](const Body& b) { n += b.active ? 1 : 0; });
    return n;
  }

  int parts_;
};

// Gives the world the configuration's path, threads and parts (held by
// split while it is used), or the reference path when c is null.
void configure(World& world, const Config* c, std::optional<SequentialParts>& split) {
  FastPass& pass = world.fastPass();
  ASSERT_TRUE(pass.setPath(c != nullptr ? c->path : KernelPath::Reference));
  pass.setForcedThreads(c != nullptr ? c->threads : 0);
  split.reset();
  if (c != nullptr && c->parts > 0) {
    split.emplace(c->parts);
  }
  world.setDistributedPasses(split ? &*split : nullptr);
}

// Runs `run(nullptr)` on the reference path, then `run(&c)` in every
// configuration c, and compares what `state` gives after each.
template <typename Run, typename State>
void expectEveryConfigGivesTheReferenceBits(Run run, State state) {
  run(nullptr);
  const std::vector<uint64_t> expected = state();
  for (const Config& c : fastConfigs()) {
    SCOPED_TRACE(c.name());
    run(&c);
    EXPECT_EQ(state(), expected);
  }
}

// The fast force pass from the same starting forces as the plain pass.
void expectFastPassMatchesPlain(World& world) {
  const std::vector<Vector> start = forcesOf(world);
  std::optional<SequentialParts> split;
  expectEveryConfigGivesTheReferenceBits(
      [&](const Config* c) {
        setForces(world, start);
        configure(world, c, split);
        c == nullptr ? world.computeForcesPlain() : world.computeForces();
      },
      [&] { return stateBits(world); });
  world.setDistributedPasses(nullptr);
}

class ForcePassSizes : public ::testing::TestWithParam<int> {};

// Sizes around the vector widths 2, 4 and 8, around the 64-body blocks of
// the threaded schedule, and two large worlds, at scales from 2^-40 to 2^60
// (the large worlds at the two ends only, to keep the sanitized run short).
TEST_P(ForcePassSizes, FastPassGivesThePlainPassBits) {
  for (int e : {-40, 0, 60}) {
    if (e == 0 && GetParam() >= 1000) {
      continue;
    }
    SCOPED_TRACE("scale 2^" + std::to_string(e));
    World world;
    fillRandom(world, GetParam(), std::ldexp(1.0, e), static_cast<uint32_t>(GetParam() + e));
    expectFastPassMatchesPlain(world);
  }
}

INSTANTIATE_TEST_SUITE_P(Sizes, ForcePassSizes,
                         ::testing::Values(1, 2, 3, 4, 5, 7, 8, 9, 17, 63, 64, 65, 129, 1000, 1003),
                         [](const auto& p) { return std::to_string(p.param) + "Bodies"; });

// Every guarded case, mixed into ordinary bodies so that they fall on the
// diagonal strips, in partner lanes and in row lanes of the vector tiles.
void fillGuarded(World& world) {
  fillRandom(world, 150, 10.0, 7);
  int k = 0;
  // Eleven cases, a period prime to every vector width.
  const std::function<void(Body&)> guarded[] = {
      [](Body& b) { b.mass = 0.0; },
      [](Body& b) { b.mass = -0.0; },
      // Within 1e-12 of the next body, but not on it.
      [](Body& b) { b.position = Vector::of(1.0, 2.0, 3.0 + 5e-13); },
      [](Body& b) { b.position = Vector::of(1.0, 2.0, 3.0); },
      // Coincident with the body before.
      [](Body& b) { b.position = Vector::of(1.0, 2.0, 3.0); },
      [](Body& b) { b.active = false; },
      // The squared distance overflows to infinity.
      [](Body& b) { b.position = Vector::of(1e200, -1e200, 1e200); },
      // The distance itself overflows: the difference is infinite.
      [](Body& b) { b.position = Vector::of(1.7e308, -1.7e308, 0.0); },
      [](Body& b) { b.position.y = kNaN; },
      [&k](Body& b) { b.mass = (k / 11) % 2 == 0 ? kInf : kNaN; },
      [](Body&) {},
  };
  forEachItem<Body>(*world.bodies, [&](Body& b) { guarded[k++ % 11](b); });
}

TEST(ForcePass, GuardedPairsGiveThePlainPassBits) {
  World world;
  fillGuarded(world);
  expectFastPassMatchesPlain(world);
}

// A cluster in which some bodies touch from the start and more come into
// contact during the steps, so that the collision passes on the prediction
// and on the final state both find pairs. With adaptive stepping the energy
// test refines down to its 1e-8 bound; a time step of 1e-7 keeps that to a
// few levels.
void fillCluster(World& world, bool merge, bool adaptive) {
  addRandomCluster(world, adaptive ? 70 : 200, 10.0, 42);
  world.timeStep = adaptive ? 1e-7 : 0.05;
  world.merge = merge;
  world.restitution = 0.5;
  world.adaptive = adaptive;
}

struct StepCase {
  bool merge;
  bool adaptive;
};

class FullSteps : public ::testing::TestWithParam<StepCase> {};

TEST_P(FullSteps, StepsGiveTheReferenceEngineBits) {
  std::optional<SequentialParts> split;
  std::optional<World> world;
  expectEveryConfigGivesTheReferenceBits(
      [&](const Config* c) {
        world.emplace();
        configure(*world, c, split);
        fillCluster(*world, GetParam().merge, GetParam().adaptive);
        const int bodiesBefore = world->bodies->count();
        takeSteps(*world, 6);
        if (c == nullptr && GetParam().merge) {
          EXPECT_LT(world->bodies->count(), bodiesBefore) << "the cluster should merge bodies";
        }
      },
      [&] { return stateBits(*world); });
}

INSTANTIATE_TEST_SUITE_P(Models, FullSteps,
                         ::testing::Values(StepCase{true, false}, StepCase{false, false},
                                           StepCase{true, true}, StepCase{false, true}),
                         [](const ::testing::TestParamInfo<StepCase>& p) {
                           return std::string(p.param.merge ? "Merge" : "Rebound") +
                                  (p.param.adaptive ? "Adaptive" : "Fixed");
                         });

// Blocks and rows cover every body once, in order. Force blocks start at
// multiples of 8 and differ by at most 8 bodies; touch parts differ by at
// most one row of pairs (n - 1) from an equal share.
TEST(PassParts, CoverTheBodiesInBalancedParts) {
  for (const auto& [n, parts] : {std::pair{0, 3}, std::pair{5, 4}, std::pair{100, 1},
                                 std::pair{1000, 2}, std::pair{1003, 3}, std::pair{20000, 7}}) {
    SCOPED_TRACE(std::to_string(n) + " bodies in " + std::to_string(parts) + " parts");
    EXPECT_EQ(forceBlockStart(n, parts, 0), 0);
    EXPECT_EQ(forceBlockStart(n, parts, parts), n);
    EXPECT_EQ(touchRowStart(n, parts, 0), 0);
    EXPECT_EQ(touchRowStart(n, parts, parts), n);
    const double share = static_cast<double>(n) * (n - 1) / 2.0 / parts;
    for (int p = 0; p < parts; ++p) {
      const int begin = forceBlockStart(n, parts, p);
      const int end = forceBlockStart(n, parts, p + 1);
      EXPECT_EQ(begin % 8, 0);
      EXPECT_LE(begin, end);
      EXPECT_LE(std::abs((end - begin) - n / parts), 8);
      const int rowBegin = touchRowStart(n, parts, p);
      const int rowEnd = touchRowStart(n, parts, p + 1);
      EXPECT_LE(rowBegin, rowEnd);
      double pairs = 0.0;
      for (int i = rowBegin; i < rowEnd; ++i) {
        pairs += n - 1 - i;
      }
      EXPECT_LE(std::fabs(pairs - share), n);
    }
  }
}

TEST(KernelPaths, UnsupportedPathIsRefusedAndTheChoiceKept) {
  World world;
  FastPass& pass = world.fastPass();
  ASSERT_TRUE(pass.setPath(KernelPath::Sse2));
  for (KernelPath p : {KernelPath::Avx2, KernelPath::Avx512}) {
    if (!kernelPathSupported(p)) {
      EXPECT_FALSE(pass.setPath(p));
      EXPECT_EQ(pass.path(), KernelPath::Sse2);
    }
  }
  EXPECT_TRUE(kernelPathSupported(fastestKernelPath()));
}

}  // namespace
