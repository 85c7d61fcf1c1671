#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "test_support.h"

namespace {

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInf = std::numeric_limits<double>::infinity();

// Each world is stepped with and without adaptive stepping and in both
// collision models. Nothing may crash, hang or trip the sanitizers, and the
// world must stay a world: time advances by whole steps, bodies keep their
// identifiers (a merge only removes some), and the quantities can be asked.
void stepEveryWay(void (*setUp)(World&), int steps = 3) {
  for (bool adaptive : {false, true}) {
    for (bool merge : {true, false}) {
      World world;
      world.adaptive = adaptive;
      world.merge = merge;
      setUp(world);
      const std::vector<int32_t> ids = idsOf(world);
      double elapsed = 0.0;
      for (int i = 0; i < steps; ++i) {
        ASSERT_TRUE(world.step());
        elapsed += world.timeStep;
      }
      EXPECT_EQ(world.elapsedTime, elapsed);
      const std::vector<Body*> left = bodiesOf(world);
      EXPECT_FALSE(left.empty());
      for (const Body* b : left)
        EXPECT_NE(std::find(ids.begin(), ids.end(), b->id), ids.end());
      if (!merge) {
        EXPECT_EQ(left.size(), ids.size());  // rebounds never remove a body
      }
      world.computeAccelerations();
      (void)world.energy(), (void)world.momentum(), (void)world.centerOfMass();
      (void)world.minCorner(), (void)world.maxCorner();
    }
  }
}

TEST(Robustness, BadNumbersNeverCrash) {
  stepEveryWay([](World& w) {
    addBody(w, vec(kNaN, 0, 0), vec(1, 0, 0));
    addBody(w, vec(5, kInf, 0), vec(0, 0, 0));
    addBody(w, vec(9, 0, 0), vec(0, -kInf, kNaN), kNaN, kNaN);
  });
  stepEveryWay([](World& w) {
    addBody(w, vec(0, 0, 0), vec(1, 0, 0), 0.0, 0.0);
    addBody(w, vec(3, 0, 0), vec(0, 0, 0), -2.0, -1.0);
    addBody(w, vec(-3, 0, 0), vec(0, 0, 0), 2.0, 0.0);
  });
  stepEveryWay([](World& w) {
    w.gravitationalConstant = kNaN;
    w.restitution = kInf;
    addBody(w, vec(0, 0, 0));
    addBody(w, vec(1.5, 0, 0));
  });
}

TEST(Robustness, CoincidentBodiesExertNoForce) {
  World world;
  world.gravitationalConstant = 1;
  Body* a = addBody(world, vec(1, 1, 1));
  Body* b = addBody(world, vec(1, 1, 1));
  Body* c = addBody(world, vec(1, 1, 1 + 1e-13));  // within 1e-12: no direction either
  world.computeAccelerations();
  for (Body* x : {a, b, c}) {
    EXPECT_EQ(x->acceleration.x, 0);
    EXPECT_EQ(x->acceleration.z, 0);  // also false for a NaN
  }
  stepEveryWay([](World& w) {
    // Separating from one point, the pair's potential energy is unbounded, so
    // an adaptive step refines down to the 1e-8 substep; keep that short.
    w.timeStep = 1e-6;
    w.gravitationalConstant = 1;
    addBody(w, vec(0, 0, 0), vec(1, 0, 0));
    addBody(w, vec(0, 0, 0), vec(-1, 0, 0));
  });
}

TEST(Robustness, ZeroAndNegativeTimeSteps) {
  for (double dt : {0.0, -0.01, -1e300, kNaN}) {
    for (bool adaptive : {false, true}) {
      World world;
      world.gravitationalConstant = 1;
      world.adaptive = adaptive;
      world.timeStep = dt;
      addBody(world, vec(0, 0, 0), vec(0, 1, 0));
      addBody(world, vec(10, 0, 0));
      world.step();
      if (dt == 0.0) {
        EXPECT_EQ(bodiesOf(world)[0]->position.x, 0);
      }
      EXPECT_TRUE(dt == world.timeStep || std::isnan(dt));
    }
  }
}

}  // namespace
