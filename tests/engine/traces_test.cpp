#include <gtest/gtest.h>

#include <vector>

#include "engine/position_point.h"
#include "test_support.h"

namespace {

std::vector<PositionPoint*> pointsOf(const World& world) {
  std::vector<PositionPoint*> out;
  forEachItem<PositionPoint>(*world.tracePoints, [&](PositionPoint& p) { out.push_back(&p); });
  return out;
}

// Two free bodies moving along x at different speeds, so each point tells
// which body and which step it came from: x = speed * dt * (step - 1).
void setUpTwoTracedBodies(World& world) {
  world.gravitationalConstant = 0;
  world.timeStep = 1;
  Body* a = addBody(world, vec(0, 0, 0), vec(1, 0, 0));
  Body* b = addBody(world, vec(0, 100, 0), vec(10, 0, 0));
  a->traceEnable = true;
  b->traceEnable = true;
}

TEST(Traces, ListKeepsExactlyTheNewestPointsInOrder) {
  World world;
  setUpTwoTracedBodies(world);
  world.traceHistoryPoints = 5;
  for (int i = 0; i < 4; ++i)
    world.step();
  const auto p = pointsOf(world);
  ASSERT_EQ(p.size(), 5u);
  // Second body's point of step 2, then both bodies' points of steps 3 and 4.
  const double expected[5][2] = {{10, 100}, {2, 0}, {20, 100}, {3, 0}, {30, 100}};
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(p[i]->x, expected[i][0]) << i;
    EXPECT_EQ(p[i]->y, expected[i][1]) << i;
  }
}

TEST(Traces, BoundOfZeroOrBelowKeepsNoPoints) {
  for (int bound : {0, -1, -2147483647 - 1}) {
    World world;
    setUpTwoTracedBodies(world);
    world.traceHistoryPoints = bound;
    world.step();
    EXPECT_EQ(world.tracePoints->count(), 0) << bound;
  }
}

TEST(Traces, LoweringTheBoundTrimsAtTheNextStep) {
  World world;
  setUpTwoTracedBodies(world);
  for (int i = 0; i < 5; ++i)
    world.step();
  EXPECT_EQ(world.tracePoints->count(), 10);
  world.traceHistoryPoints = 3;
  EXPECT_EQ(world.tracePoints->count(), 10);
  world.step();
  EXPECT_EQ(world.tracePoints->count(), 3);
  EXPECT_EQ(pointsOf(world).back()->x, 50);
}

TEST(Traces, PointsOutliveTheirBodyAndKeepTheirColour) {
  World world;
  setUpTwoTracedBodies(world);
  Body* a = world.findBodyById(100);
  a->color[0] = 1.0f;
  world.step();
  a->color[0] = 0.0f;
  EXPECT_EQ(pointsOf(world)[0]->color[0], 1.0f);
  world.deleteBodyById(100);
  world.deleteAllBodies();
  EXPECT_EQ(world.tracePoints->count(), 2);
  world.step();
  EXPECT_EQ(world.tracePoints->count(), 2);
  world.reset();
  EXPECT_EQ(world.tracePoints->count(), 0);
}

TEST(Traces, SwitchingTraceOnRecordsFromTheNextStep) {
  World world;
  world.gravitationalConstant = 0;
  world.timeStep = 1;
  Body* b = addBody(world, vec(0, 0, 0), vec(1, 0, 0));
  world.step();
  EXPECT_EQ(world.tracePoints->count(), 0);
  b->traceEnable = true;
  EXPECT_EQ(world.tracePoints->count(), 0);
  world.step();
  ASSERT_EQ(world.tracePoints->count(), 1);
  EXPECT_EQ(pointsOf(world)[0]->x, 1);
}

TEST(Traces, AdaptiveStepRecordsOncePerStep) {
  World world;
  world.adaptive = true;
  setUpTwoTracedBodies(world);
  world.step();
  EXPECT_EQ(world.tracePoints->count(), 2);
}

}  // namespace
