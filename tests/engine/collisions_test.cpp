#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "test_support.h"
#include "tests/case_names.h"

namespace {

// Bodies touch when their distance is at most the sum of their radii; the
// older body absorbs every body it touches in one pass.
TEST(Collisions, OlderBodyAbsorbsEveryBodyWithinTheSumOfRadiiInOnePass) {
  World world;
  addBody(world, vec(0, 0, 0));
  addBody(world, vec(2, 0, 0));
  addBody(world, vec(0, -2, 0));
  EXPECT_TRUE(world.collide());
  ASSERT_EQ(world.bodies->count(), 1);
  EXPECT_EQ(bodiesOf(world)[0]->id, 100);
  EXPECT_EQ(bodiesOf(world)[0]->mass, 3);
  world.reset();
  addBody(world, vec(0, 0, 0));
  addBody(world, vec(2.0000001, 0, 0));
  EXPECT_FALSE(world.collide());
  EXPECT_EQ(world.bodies->count(), 2);
}

// The older body survives under its own name; the younger is announced as
// deleted.
TEST(Collisions, MergeConservesMassMomentumAndVolumeAndMixesColourByVolume) {
  RecordingObserver observer;
  World world;
  Body* a = addBody(world, vec(0.3, -0.2, 0.1), vec(1.5, -2, 0.25), 3.0, 0.7);
  Body* b = addBody(world, vec(0.9, 0.4, -0.3), vec(-4, 0.5, 3), 0.45, 0.6);
  const float ca[] = {0.9f, 0.2f, 0.1f};
  const float cb[] = {0.1f, 0.8f, 0.3f};
  std::copy(ca, ca + 3, a->color);
  std::copy(cb, cb + 3, b->color);
  const double mass = a->mass + b->mass;
  const Vector momentum = world.momentum();
  const Vector centre = world.centerOfMass();
  const double volume = std::pow(a->radius, 3) + std::pow(b->radius, 3);
  const double va = std::pow(a->radius, 3) / volume;
  observer.events.clear();

  ASSERT_TRUE(world.collide());
  ASSERT_EQ(world.bodies->count(), 1);
  const Body* m = bodiesOf(world)[0];
  EXPECT_STREQ(m->name, "Body 0");
  ASSERT_EQ(observer.events.size(), 1u);
  EXPECT_FALSE(observer.events[0].created);
  EXPECT_EQ(observer.events[0].name, "Body 1");
  EXPECT_EQ(m->mass, mass);
  // Relative rounding of a few operations in double precision.
  EXPECT_NEAR(std::pow(m->radius, 3), volume, 1e-14 * volume);
  EXPECT_NEAR((world.momentum() - momentum).length(), 0, 1e-14);
  EXPECT_NEAR((m->position - centre).length(), 0, 1e-14);
  // The colour is stored in single precision: one float ulp.
  for (int c = 0; c < 3; ++c)
    EXPECT_NEAR(m->color[c], ca[c] * va + cb[c] * (1 - va), 1e-7) << c;
}

TEST(Collisions, HeadOnMergeKeepsTheWorldsAngularMomentum) {
  World world;
  // A third body far away gives the world an angular momentum; the merging
  // pair moves along the line through its centres, so it has no angular
  // momentum about its own centroid to lose.
  addBody(world, vec(40, 3, 0), vec(0, 0.7, 0.2), 2.0, 0.5);
  addBody(world, vec(0.3, 0.1, 0), vec(-1.2, -0.4, 0), 3.0, 0.7);
  addBody(world, vec(-0.6, -0.2, 0), vec(2.4, 0.8, 0), 0.45, 0.6);
  const Vector before = world.angularMomentum();
  ASSERT_TRUE(world.collide());
  ASSERT_EQ(world.bodies->count(), 2);
  const Vector after = world.angularMomentum();
  // Mass-weighted means of a few terms: rounding of order 1e-16 of the
  // largest term (|L| is about 40 here).
  EXPECT_NEAR((after - before).length(), 0, 1e-13);
  EXPECT_GT(std::fabs(before.z), 1.0);
}

class Rebound : public ::testing::TestWithParam<double> {};

TEST_P(Rebound, KeepsMomentumAndScalesTheNormalRelativeVelocityByMinusE) {
  const double e = GetParam();
  World world;
  world.merge = false;
  world.restitution = e;
  Body* a = addBody(world, vec(0.2, 0.1, -0.3), vec(0.4, -1.1, 0.6), 2.5, 0.5);
  Body* b = addBody(world, vec(-0.4, 0.5, 0.2), vec(-0.9, 0.3, -0.2), 0.7, 0.5);
  const Vector n = normalized(a->position - b->position);
  const Vector rel = a->velocity - b->velocity;
  const Vector momentum = world.momentum();
  const double x = a->position.x;

  ASSERT_TRUE(world.collide());
  EXPECT_EQ(a->position.x, x);  // rebounds never move the bodies
  const Vector relAfter = a->velocity - b->velocity;
  // Tolerances: rounding of a handful of double operations on values of order 1.
  EXPECT_NEAR(dot(relAfter, n), -e * dot(rel, n), 1e-14);
  const Vector tangential = rel - dot(rel, n) * n;
  const Vector tangentialAfter = relAfter - dot(relAfter, n) * n;
  EXPECT_NEAR((tangential - tangentialAfter).length(), 0, 1e-14);
  EXPECT_NEAR((world.momentum() - momentum).length(), 0, 1e-14);
}

INSTANTIATE_TEST_SUITE_P(Restitution, Rebound, ::testing::Values(0.0, 0.35, 1.0, 1.5),
                         caseNames({"Inelastic", "Partly", "Elastic", "Superelastic"}));

// A touching pair rebounds even when it already separates; coincident
// centres give no normal, so their velocities stay.
TEST(Collisions, ReboundAppliesToSeparatingPairsAndSkipsCoincidentCentres) {
  World world;
  world.merge = false;
  Body* a = addBody(world, vec(-0.5, 0, 0), vec(-1, 0, 0));
  Body* b = addBody(world, vec(0.5, 0, 0), vec(1, 0, 0));
  EXPECT_TRUE(world.collide());
  EXPECT_EQ(std::pair(a->velocity.x, b->velocity.x), std::pair(1.0, -1.0));
  world.collide();
  EXPECT_EQ(a->velocity.x, -1);
  b->position = a->position;
  EXPECT_TRUE(world.collide());
  EXPECT_EQ(std::pair(a->velocity.x, b->velocity.x), std::pair(-1.0, 1.0));
}

TEST(Collisions, ContactFoundByThePredictionEndsTheStepWithThePredictedState) {
  World world;
  world.gravitationalConstant = 1;
  world.timeStep = 0.1;
  world.merge = false;
  Body* a = addBody(world, vec(-1.05, 0, 0), vec(1, 0, 0));
  Body* b = addBody(world, vec(1.05, 0, 0), vec(-1, 0, 0));
  world.step();
  // Forward Euler by hand: each body is pulled inwards by 1 / 2.1^2, the new
  // velocity moves the position, and the elastic rebound then swaps the
  // normal velocities. A Runge-Kutta step would land elsewhere.
  const double accel = 1.0 / (2.1 * 2.1);
  const double v = 1.0 + accel * 0.1;
  const double x = -1.05 + v * 0.1;
  EXPECT_DOUBLE_EQ(a->position.x, x);
  EXPECT_DOUBLE_EQ(b->position.x, -x);
  EXPECT_DOUBLE_EQ(a->velocity.x, -v);
  EXPECT_DOUBLE_EQ(b->velocity.x, v);
  EXPECT_DOUBLE_EQ(a->acceleration.x, accel);
}

}  // namespace
