#include <gtest/gtest.h>

#include <set>
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

// The adaptive step, which refines nothing here, records once per step too.
TEST(Traces, ListKeepsExactlyTheNewestPointsInOrder) {
  for (const bool adaptive : {false, true}) {
    World world;
    world.adaptive = adaptive;
    setUpTwoTracedBodies(world);
    world.traceHistoryPoints = 5;
    takeSteps(world, 4);
    const auto p = pointsOf(world);
    ASSERT_EQ(p.size(), 5u);
    // Second body's point of step 2, then both bodies' points of steps 3 and 4.
    const double expected[5][2] = {{10, 100}, {2, 0}, {20, 100}, {3, 0}, {30, 100}};
    for (int i = 0; i < 5; ++i) {
      EXPECT_EQ(p[i]->x, expected[i][0]) << i << (adaptive ? " adaptive" : "");
      EXPECT_EQ(p[i]->y, expected[i][1]) << i;
    }
  }
}

TEST(Traces, LoweringTheBoundTrimsAtTheNextStep) {
  World world;
  setUpTwoTracedBodies(world);
  takeSteps(world, 5);
  EXPECT_EQ(world.tracePoints->count(), 10);
  world.traceHistoryPoints = 3;
  EXPECT_EQ(world.tracePoints->count(), 10);
  world.step();
  EXPECT_EQ(world.tracePoints->count(), 3);
  EXPECT_EQ(pointsOf(world).back()->x, 50);
  // A bound of zero or below keeps none.
  for (int bound : {0, -1, -2147483647 - 1}) {
    world.traceHistoryPoints = bound;
    world.step();
    EXPECT_EQ(world.tracePoints->count(), 0) << bound;
  }
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
  world.step();
  EXPECT_EQ(world.tracePoints->count(), 3);
}

// The frames are exactly those of the points still listed, so they are
// bounded as the list is; each holds the centre of mass and the watched
// bodies as they were when its points were recorded.
TEST(Traces, EveryListedPointHasTheFrameOfItsStepAndNoOtherFrameIsKept) {
  World world;
  setUpTwoTracedBodies(world);
  Body* still = addBody(world, vec(0, 0, 50));
  world.traceFrames.watch(still->id);
  world.traceFrames.watch(100);
  world.traceHistoryPoints = 3;
  for (int step = 0; step < 6; ++step) {
    const Vector centre = world.centerOfMass();
    const Vector first = world.findBodyById(100)->position;
    world.step();
    std::set<uint64_t> pointFrames;
    for (const PositionPoint* p : pointsOf(world))
      pointFrames.insert(p->frame);
    std::set<uint64_t> kept;
    for (const TraceFrame& f : world.traceFrames.frames())
      kept.insert(f.number);
    EXPECT_EQ(kept, pointFrames) << step;
    const TraceFrame& newest = world.traceFrames.frames().back();
    EXPECT_EQ(newest.number, pointsOf(world).back()->frame);
    EXPECT_EQ(xyz(newest.centerOfMass), xyz(centre));
    ASSERT_EQ(newest.references.size(), 2u);
    EXPECT_EQ(xyz(*newest.positionOf(still->id)), xyz(vec(0, 0, 50)));
    EXPECT_EQ(xyz(*newest.positionOf(100)), xyz(first));
    EXPECT_EQ(newest.positionOf(101), nullptr);
  }
}

TEST(Traces, AWatchedBodyThatIsGoneIsForgottenAndAResetKeepsTheWatch) {
  World world;
  setUpTwoTracedBodies(world);
  world.traceFrames.watch(0);
  world.traceFrames.watch(101);
  world.traceFrames.watch(101);
  EXPECT_EQ(world.traceFrames.watched(), std::vector<int32_t>{101});
  world.reset();
  EXPECT_EQ(world.traceFrames.watched(), std::vector<int32_t>{101});
  setUpTwoTracedBodies(world);
  world.step();
  world.deleteBodyById(101);
  world.step();
  EXPECT_TRUE(world.traceFrames.watched().empty());
  EXPECT_EQ(world.traceFrames.frames().back().positionOf(101), nullptr);
  world.reset();
  EXPECT_TRUE(world.traceFrames.frames().empty());
}

// Recording the references only reads the bodies: a traced and watched
// world steps to the same bits as one that records nothing.
TEST(Traces, RecordingReferencesChangesNoBitOfTheRun) {
  World recorded, plain;
  for (World* w : {&recorded, &plain}) {
    addRandomCluster(*w, 12, 6.0, 7);
    w->timeStep = 0.01;
  }
  forEachItem<Body>(*recorded.bodies, [](Body& b) { b.traceEnable = true; });
  recorded.traceFrames.watch(103);
  recorded.traceFrames.watch(105);
  recorded.traceHistoryPoints = 50;
  takeSteps(recorded, 200);
  takeSteps(plain, 200);
  // A last step that keeps no trace leaves only the bodies to compare.
  forEachItem<Body>(*recorded.bodies, [](Body& b) { b.traceEnable = false; });
  recorded.traceHistoryPoints = 0;
  takeSteps(recorded, 1);
  takeSteps(plain, 1);
  EXPECT_EQ(stateBits(recorded), stateBits(plain));
}

}  // namespace
