#include <gtest/gtest.h>

#include <bit>
#include <cstdint>

#include "engine/position_point.h"
#include "test_support.h"

namespace {

TEST(World, ResetValuesAreTheWidenedSinglePrecisionConstants) {
  World world;
  world.timeStep = 5;
  world.gravitationalConstant = 1;
  world.reset();
  EXPECT_EQ(std::bit_cast<uint64_t>(world.timeStep), 0x3F847AE140000000u);
  EXPECT_EQ(std::bit_cast<uint64_t>(world.gravitationalConstant), 0x3DD2576B00000000u);
  EXPECT_EQ(world.timeStep, static_cast<double>(0.01f));
  EXPECT_EQ(world.gravitationalConstant, static_cast<double>(6.67259e-11f));
  EXPECT_EQ(world.traceHistoryPoints, 20000);
  EXPECT_EQ(world.restitution, 1.0);
  EXPECT_TRUE(world.merge);
  EXPECT_FALSE(world.adaptive);
  EXPECT_EQ(world.nextBodyId, 100);
  EXPECT_EQ(world.nextViewNumber, 100);
  EXPECT_STREQ(world.name, "Default world");
  EXPECT_EQ(world.millisecondsPerUpdate, 0.0f);
  EXPECT_EQ(world.elapsedTime, 0.0);
  EXPECT_EQ(world.bodies->count(), 0);
  EXPECT_EQ(world.tracePoints->count(), 0);
}

TEST(World, IdentifiersCountUpAndAreNeverReused) {
  World world;
  EXPECT_EQ(world.createBody()->id, 100);
  EXPECT_EQ(world.createBody()->id, 101);
  EXPECT_EQ(world.createBody()->id, 102);
  world.deleteBodyById(101);
  Body* d = world.createBody();
  EXPECT_EQ(d->id, 103);
  EXPECT_STREQ(d->name, "Body 3");
  world.deleteAllBodies();
  EXPECT_EQ(world.createBody()->id, 104);
  world.reset();
  EXPECT_EQ(world.createBody()->id, 100);
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
  std::vector<int> ids;
  for (Body* b : bodiesOf(world))
    ids.push_back(b->id);
  EXPECT_EQ(ids, (std::vector<int>{100, 101, 102}));
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
  world.setName("Twins");
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

TEST(World, DeleteAllBodiesKeepsCountersParametersAndTraces) {
  RecordingObserver observer;
  World world;
  Body* b = world.createBody();
  b->traceEnable = true;
  world.createBody()->position = vec(10, 0, 0);
  world.timeStep = 0.5;
  world.step();
  ASSERT_EQ(world.tracePoints->count(), 1);
  world.deleteAllBodies();
  EXPECT_EQ(observer.count(false), 2);
  EXPECT_EQ(world.bodies->count(), 0);
  EXPECT_EQ(world.tracePoints->count(), 1);
  EXPECT_EQ(world.nextBodyId, 102);
  EXPECT_EQ(world.timeStep, 0.5);
}

TEST(World, CornersSpanTheBodyPositions) {
  World world;
  EXPECT_TRUE(world.minCorner().isZero());
  EXPECT_TRUE(world.maxCorner().isZero());
  addBody(world, vec(1, -2, 3));
  EXPECT_EQ(world.minCorner().y, -2);
  EXPECT_EQ(world.maxCorner().z, 3);
  addBody(world, vec(-5, 4, 3));
  addBody(world, vec(2, 0, -7));
  const Vector lo = world.minCorner();
  const Vector hi = world.maxCorner();
  EXPECT_EQ(lo.x, -5);
  EXPECT_EQ(lo.y, -2);
  EXPECT_EQ(lo.z, -7);
  EXPECT_EQ(hi.x, 2);
  EXPECT_EQ(hi.y, 4);
  EXPECT_EQ(hi.z, 3);
}

TEST(World, ViewNumbersCountUpFromAHundred) {
  World world;
  EXPECT_EQ(world.takeViewNumber(), 100);
  EXPECT_EQ(world.takeViewNumber(), 101);
  world.reset();
  EXPECT_EQ(world.takeViewNumber(), 100);
}

TEST(World, ResetNotifiesEveryBodyAndEmptiesBothLists) {
  RecordingObserver observer;
  World world;
  for (int i = 0; i < 3; ++i) {
    Body* b = addBody(world, vec(10.0 * i, 0, 0));
    b->traceEnable = true;
  }
  world.step();
  EXPECT_EQ(world.tracePoints->count(), 3);
  world.reset();
  EXPECT_EQ(observer.count(false), 3);
  EXPECT_EQ(world.tracePoints->count(), 0);
  EXPECT_EQ(world.bodies->count(), 0);
}

}  // namespace
