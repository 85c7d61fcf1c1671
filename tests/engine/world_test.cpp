#include <gtest/gtest.h>

#include <cstdint>
#include <tuple>

#include "test_support.h"

namespace {

// Body identifiers and view numbers count up from 100 and are never reused
// until a reset.
TEST(World, IdentifiersAndViewNumbersCountUpFromAHundredUntilAReset) {
  World world;
  EXPECT_EQ(world.createBody()->id, 100);
  EXPECT_EQ(world.createBody()->id, 101);
  world.deleteBodyById(101);
  Body* c = world.createBody();
  EXPECT_EQ(c->id, 102);
  EXPECT_STREQ(c->name, "Body 2");
  world.deleteAllBodies();
  EXPECT_EQ(world.createBody()->id, 103);
  EXPECT_EQ(world.takeViewNumber(), 100);
  EXPECT_EQ(world.takeViewNumber(), 101);
  world.reset();
  EXPECT_EQ(world.createBody()->id, 100);
  EXPECT_EQ(world.takeViewNumber(), 100);
}

// Putting a deleted body back: same identifier and default name, same place,
// and the counter never hands the identifier out again.
TEST(World, InsertBodyPutsABodyBackAtItsPlace) {
  World world;
  for (int i = 0; i < 3; ++i)
    world.createBody();
  world.deleteBodyById(101);
  Body* back = world.insertBody(101, 1);
  EXPECT_STREQ(back->name, "Body 1");
  EXPECT_EQ(idsOf(world), (std::vector<int32_t>{100, 101, 102}));
  EXPECT_EQ(world.nextBodyId, 103);
  EXPECT_EQ(world.insertBody(200, 0)->id, 200);
  const Body* last = world.insertBody(300, 99);
  EXPECT_EQ(last, world.bodies->tail()->item());
  EXPECT_EQ(static_cast<Body*>(world.bodies->head()->item())->id, 200);
  EXPECT_EQ(world.nextBodyId, 301);
  EXPECT_EQ(world.bodies->count(), 5);
}

TEST(World, IdentifierCounterStopsAtTheLargestIdentifierAndNeverRepeatsOne) {
  World world;
  world.nextBodyId = 2147483647;
  EXPECT_EQ(world.createBody()->id, 2147483647);
  EXPECT_EQ(world.nextBodyId, 2147483647);
  // The largest is taken: the lowest free identifiers from 100 up follow.
  EXPECT_EQ(world.createBody()->id, 100);
  EXPECT_EQ(world.createBody()->id, 101);
  world.deleteBodyById(100);
  EXPECT_EQ(world.createBody()->id, 100);
}

TEST(World, LookupsFindTheFirstMatchOrNothing) {
  World world;
  Body* a = world.createBody();
  Body* b = world.createBody();
  copyName(a->name, "Castor");
  copyName(b->name, "Castor");
  EXPECT_EQ(world.findBodyByName("Castor"), a);
  EXPECT_EQ(world.findBodyByName("castor"), nullptr);
  EXPECT_EQ(world.findBodyById(101), b);
  EXPECT_EQ(world.findBodyById(99), nullptr);
  world.deleteBodyById(555);
  EXPECT_EQ(world.bodies->count(), 2);
  world.deleteBodyById(100);
  EXPECT_EQ(world.findBodyByName("Castor"), b);
}

// Deleting every body keeps the counters, the parameters and the trace
// points; a reset notifies every body and empties both lists.
TEST(World, DeleteAllBodiesKeepsTracesAndCountersAndResetClearsEverything) {
  RecordingObserver observer;
  World world;
  for (int i = 0; i < 3; ++i)
    addBody(world, vec(10.0 * i, 0, 0))->traceEnable = true;
  world.timeStep = 0.5;
  world.step();
  ASSERT_EQ(world.tracePoints->count(), 3);
  world.deleteAllBodies();
  EXPECT_EQ(observer.count(false), 3);
  EXPECT_EQ(world.tracePoints->count(), 3);
  EXPECT_EQ(world.nextBodyId, 103);
  EXPECT_EQ(world.timeStep, 0.5);

  for (int i = 0; i < 2; ++i)
    addBody(world, vec(10.0 * i, 0, 0));
  world.reset();
  EXPECT_EQ(observer.count(false), 5);
  EXPECT_EQ(world.tracePoints->count(), 0);
  EXPECT_EQ(world.bodies->count(), 0);
  EXPECT_EQ(world.elapsedTime, 0.0);
}

TEST(World, CornersSpanTheBodyPositions) {
  World world;
  EXPECT_TRUE(world.minCorner().isZero() && world.maxCorner().isZero());
  addBody(world, vec(1, -2, 3));
  addBody(world, vec(-5, 4, 3));
  addBody(world, vec(2, 0, -7));
  const Vector lo = world.minCorner(), hi = world.maxCorner();
  EXPECT_EQ(std::tuple(lo.x, lo.y, lo.z, hi.x, hi.y, hi.z), std::tuple(-5, -2, -7, 2, 4, 3));
}

}  // namespace
