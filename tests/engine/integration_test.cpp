#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <numbers>
#include <tuple>
#include <utility>
#include <vector>

#include "test_support.h"

namespace {

// A free body moves in a straight line, and the adaptive step, whose energy
// test passes at once, gives the plain step's bits; an empty world still
// advances its time.
TEST(Integration, FreeBodyMovesStraightAndTheAdaptiveStepGivesThePlainBits) {
  std::vector<uint64_t> plain;
  for (bool adaptive : {false, true}) {
    World world, empty;
    world.adaptive = empty.adaptive = adaptive;
    addBody(world, vec(1, 2, 3), vec(0.5, -0.25, 0));
    world.step();
    empty.step();
    empty.step();
    EXPECT_EQ(empty.elapsedTime, empty.timeStep + empty.timeStep);
    const Body* b = bodiesOf(world)[0];
    // The stages add up the same velocity in parts: a few ulps.
    EXPECT_DOUBLE_EQ(b->position.x, 1 + 0.5 * world.timeStep);
    EXPECT_EQ(std::tuple(b->position.z, b->velocity.y, world.elapsedTime, world.energy()),
              std::tuple(3.0, -0.25, world.timeStep, 0.15625));
    if (adaptive) {
      EXPECT_EQ(stateBits(world), plain);
    }
    plain = stateBits(world);
  }
}

TEST(Integration, TwoBodiesAtRestPullEachOtherByTheInverseSquare) {
  World world;
  world.gravitationalConstant = 1;
  Body* right = addBody(world, vec(1, 0, 0));
  Body* left = addBody(world, vec(-1, 0, 0));
  world.computeAccelerations();
  EXPECT_EQ(std::tuple(right->acceleration.x, left->acceleration.x, right->acceleration.y),
            std::tuple(-0.25, 0.25, 0.0));
  EXPECT_TRUE(right->force.isZero());  // the refresh leaves the accumulators cleared
  EXPECT_EQ(world.energy(), -0.5);
}

// Momentum zeroes components within 1e-12; the centre of mass divides by a
// total mass above 1e-12 and reports the undivided weighted sum otherwise.
TEST(Integration, MomentumAndCentreOfMassFollowTheTolerance) {
  World world;
  EXPECT_TRUE(world.centerOfMass().isZero());
  addBody(world, vec(0, 0, 0), vec(1e-13, 2, 0), 1.0);
  addBody(world, vec(4, 0, 0), Vector(), 3.0);
  EXPECT_EQ(world.momentum().x, 0.0);
  EXPECT_EQ(world.momentum().y, 2.0);
  EXPECT_EQ(world.centerOfMass().x, 3.0);
  world.reset();
  addBody(world, vec(4, 2, 0), Vector(), 5e-13);
  EXPECT_EQ(xyz(world.centerOfMass()), xyz(vec(4 * 5e-13, 2 * 5e-13, 0)));
}

// Two bodies of masses m1 and m2 on an orbit of eccentricity e (G = 1,
// semi-major axis 1, period 2 pi / sqrt(m1 + m2)), started at pericentre and
// stepped for one period.
struct Orbit {
  double energyError;      // relative, at the end
  double separationError;  // the worst distance from the starting separation
  Vector angularMomentumBefore;
  Vector angularMomentumAfter;
};

Orbit oneOrbit(double e, double m1, double m2, int stepsPerPeriod) {
  World world;
  world.gravitationalConstant = 1;
  const double m = m1 + m2, rp = 1.0 - e, vp = std::sqrt(m * (1.0 + e) / rp);
  addBody(world, vec(-rp * m2 / m, 0, 0), vec(0, -vp * m2 / m, 0), m1, 0.01);
  addBody(world, vec(rp * m1 / m, 0, 0), vec(0, vp * m1 / m, 0), m2, 0.01);
  world.timeStep = 2.0 * std::numbers::pi / std::sqrt(m) / stepsPerPeriod;
  const double e0 = world.energy();
  Orbit orbit{0.0, 0.0, world.angularMomentum(), Vector()};
  for (int i = 0; i < stepsPerPeriod; ++i) {
    world.step();
    const auto b = bodiesOf(world);
    orbit.separationError =
        std::max(orbit.separationError, std::fabs((b[0]->position - b[1]->position).length() - rp));
  }
  orbit.energyError = std::fabs(world.energy() - e0) / std::fabs(e0);
  orbit.angularMomentumAfter = world.angularMomentum();
  return orbit;
}

// Two equal masses on a circle of separation 1: each moves at sqrt(1/2)
// around the centre.
TEST(Integration, CircularOrbitErrorsFallSixteenfoldWhenStepHalves) {
  const Orbit coarse = oneOrbit(0.0, 1.0, 1.0, 100);
  const Orbit fine = oneOrbit(0.0, 1.0, 1.0, 200);
  // Fourth-order global error: with 100 steps per period the radius is off by
  // about 6e-7, so with 200 steps by a sixteenth of that, below 1e-7; the
  // energy error is smaller still, but not zero in a real integration.
  EXPECT_LT(fine.separationError, 1e-7);
  EXPECT_LT(fine.energyError, 1e-8);
  EXPECT_GT(fine.energyError, 0.0);
  // Halving h divides the error in the radius by 2^4 = 16, give or take the
  // higher-order terms at these step sizes. The energy error of this
  // symmetric orbit falls even faster (about 32-fold), so it is held only to
  // the fourth-order bound.
  EXPECT_GT(coarse.separationError / fine.separationError, 12.0);
  EXPECT_LT(coarse.separationError / fine.separationError, 20.0);
  EXPECT_GT(coarse.energyError / fine.energyError, 14.0);
}

TEST(Integration, AngularMomentumOfAnEccentricOrbitDriftsOnlyByTheMethodsError) {
  double drift[2];
  for (int k = 0; k < 2; ++k) {
    const Orbit orbit = oneOrbit(0.6, 1.0, 0.5, 400 << k);
    const Vector l0 = orbit.angularMomentumBefore, l = orbit.angularMomentumAfter;
    EXPECT_GT(l0.z, 0.0);
    EXPECT_EQ(std::pair(l.x, l.y), std::pair(0.0, 0.0));  // a planar orbit keeps its axis exactly
    drift[k] = std::fabs(l.z - l0.z) / l0.z;
  }
  // Runge-Kutta does not conserve angular momentum exactly; its drift over a
  // period is a fourth-order error, so halving the step divides it by about
  // 16; over a whole period of this symmetric orbit it falls about 32-fold.
  EXPECT_LT(drift[0], 1e-7);  // measured 2.3e-8
  EXPECT_GT(drift[1], 0.0);
  EXPECT_GT(drift[0] / drift[1], 12.0);
}

// A close, fast encounter in which one step of 0.05 misses the 1e-12 energy
// test, so the step is refined.
void setUpEncounter(World& world) {
  world.gravitationalConstant = 1;
  world.timeStep = 0.05;
  addBody(world, vec(0.3, 0, 0), vec(0, 1.5, 0), 1.0, 0.001);
  addBody(world, vec(-0.3, 0, 0), vec(0, -1.5, 0), 1.0, 0.001);
}

// The refined step covers the whole time step, and the body copies it makes
// and drops leave the Body menu as it was.
TEST(Integration, RefinedAdaptiveStepAdvancesTheBodiesByTheWholeStep) {
  World single, adaptive, reference;
  adaptive.adaptive = true;
  for (World* w : {&single, &adaptive, &reference})
    setUpEncounter(*w);
  RecordingObserver observer;
  single.step();
  adaptive.step();
  EXPECT_EQ(observer.count(true), observer.count(false));
  EXPECT_GT(observer.count(true), 0);
  // Reference: 256 plain steps of dt / 256.
  reference.timeStep = 0.05 / 256;
  for (int i = 0; i < 256; ++i)
    reference.integrate();

  EXPECT_EQ(adaptive.timeStep, 0.05);
  EXPECT_EQ(adaptive.elapsedTime, 0.05);
  ASSERT_TRUE(adaptive.findBodyById(100) != nullptr && adaptive.findBodyById(101) != nullptr);
  const Vector s = single.findBodyById(100)->position;
  const Vector a = adaptive.findBodyById(100)->position;
  const Vector r = reference.findBodyById(100)->position;
  // The kept result is not the single step, and it covers the whole 0.05: it
  // is far closer to the reference than the distance moved in one substep
  // (1.5 * 0.05 / 2 = 0.0375), and closer than the single step.
  EXPECT_NE(a.x, s.x);
  EXPECT_LT((a - r).length(), 1e-6);
  EXPECT_LT((a - r).length(), (s - r).length());
}

// Cancels the step at its k-th call (never when k is 0) and keeps what it saw.
class CancellingMonitor : public StepMonitor {
 public:
  explicit CancellingMonitor(int cancelAt) : cancelAt_(cancelAt) {}
  bool keepGoing(const StepProgress& progress) override {
    seen.push_back(progress);
    return static_cast<int>(seen.size()) != cancelAt_;
  }
  std::vector<StepProgress> seen;

 private:
  int cancelAt_;
};

// A step that refines for very long: an eccentric pair of point
// bodies with a time step of 100 refines towards the 1e-8 substep. One short
// step first leaves a trace point and a changed state to start from.
void setUpLongStep(World& world) {
  world.gravitationalConstant = 1;
  world.adaptive = true;
  world.timeStep = 0.001;
  addBody(world, vec(1, 0, 0), vec(0, 0.3, 0), 1.0, 0.0)->traceEnable = true;
  addBody(world, vec(-1, 0, 0), vec(0, -0.3, 0), 1.0, 0.0);
  world.computeAccelerations();
  world.step();
}

TEST(Integration, CancelledLongStepLeavesTheWorldAsItWas) {
  for (int cancelAt : {1, 50}) {
    SCOPED_TRACE(cancelAt);
    World world, untouched;
    setUpLongStep(world);
    setUpLongStep(untouched);
    world.timeStep = 100;
    const std::vector<uint64_t> before = stateBits(world);
    CancellingMonitor monitor(cancelAt);
    EXPECT_FALSE(world.step(&monitor));
    EXPECT_EQ(stateBits(world), before);
    ASSERT_EQ(monitor.seen.size(), static_cast<std::size_t>(cancelAt));
    const StepProgress& last = monitor.seen.back();
    // From a time step of 100 down to 1e-8: about 2 * 2^34 integrations.
    EXPECT_GT(last.done, 0.0);
    EXPECT_GT(last.worstCase, 1e10);
    EXPECT_LT(last.done, last.worstCase);
    // Nothing of the cancelled step lingers: the next step is the step the
    // untouched world takes.
    world.timeStep = 0.001;
    world.step();
    untouched.step();
    EXPECT_EQ(stateBits(world), stateBits(untouched));
  }
}

TEST(Integration, MonitorThatLetsTheStepRunChangesNoBit) {
  World watched, plain;
  for (World* w : {&watched, &plain}) {
    w->adaptive = true;
    setUpEncounter(*w);
    // Enough bodies that the monitor is asked after every integration.
    for (int i = 0; i < 90; ++i)
      addBody(*w, Vector::fromCylindrical(50.0 + i, 0.0, 0.07 * i), Vector(), 1e-6, 0.001);
  }
  CancellingMonitor monitor(0);
  EXPECT_TRUE(watched.step(&monitor));
  plain.step();
  EXPECT_EQ(stateBits(watched), stateBits(plain));
  // The encounter refines: the monitor was asked, with growing counts.
  ASSERT_GE(monitor.seen.size(), 2u);
  EXPECT_LT(monitor.seen.front().done, monitor.seen.back().done);
}

uint64_t stateHash(const World& world) {
  uint64_t h = 1469598103934665603u;
  for (uint64_t bits : stateBits(world)) {
    h = (h ^ bits) * 1099511628211u;
  }
  return h;
}

// A fixed world with orbits, close encounters, merges and rebounds. Its hash
// is the same in every build type: the arithmetic must not depend on the
// optimiser.
TEST(Integration, FixedWorldGivesAFixedStateHash) {
  uint64_t hashes[2] = {};
  for (int pass = 0; pass < 2; ++pass) {
    World world;
    world.gravitationalConstant = 1;
    world.timeStep = 0.01;
    world.merge = pass == 0;
    world.restitution = 0.6;
    world.adaptive = pass == 1;
    for (int i = 0; i < 7; ++i) {
      const double a = 0.9 * i;
      Body* b =
          addBody(world, Vector::fromCylindrical(1.0 + 0.3 * i, 0.1 * i, a),
                  Vector::fromCylindrical(0.8, 0.0, a + 1.7), 0.5 + 0.25 * i, 0.05 + 0.02 * i);
      b->color[0] = 0.1f * static_cast<float>(i);
    }
    // Fewer adaptive steps: a close encounter later in this run refines
    // the step thousands of times.
    takeSteps(world, pass == 0 ? 300 : 60);
    hashes[pass] = stateHash(world);
  }
  EXPECT_EQ(hashes[0], 0xc3a1b3154beb7c28u) << std::hex << hashes[0];
  EXPECT_EQ(hashes[1], 0x4bafb425b1683f4au) << std::hex << hashes[1];
}

}  // namespace
