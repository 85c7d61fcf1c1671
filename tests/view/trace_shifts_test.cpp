#include "view/trace_shifts.h"

#include <gtest/gtest.h>

#include <vector>

#include "engine/position_point.h"
#include "engine/world.h"
#include "view/view.h"

namespace {

// Without gravity a ship and its escort move side by side at (1, 0, 0),
// the escort 2 units above, while a buoy of twice their mass
// stays 10 units below the start. Relative to
// the ship, every escort point is 2 units above the ship's current place;
// in the world they lie along a line, one unit apart.
class TraceShiftsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    world.gravitationalConstant = 0.0;
    world.timeStep = 1.0;
    ship = add(Vector::of(0, 0, 0), Vector::of(1, 0, 0));
    escort = add(Vector::of(0, 2, 0), Vector::of(1, 0, 0));
    escort->traceEnable = true;
    add(Vector::of(0, -10, 0), Vector())->mass = 2.0;
    view.trackBodyID = ship->id;
  }

  Body* add(const Vector& position, const Vector& velocity) {
    Body* b = world.createBody();
    b->position = position;
    b->velocity = velocity;
    b->radius = 0.1;
    return b;
  }

  // Where the view draws each trace point, oldest first.
  std::vector<Vector> drawn() {
    TraceShifts shifts(view, world);
    std::vector<Vector> out;
    forEachItem<PositionPoint>(*world.tracePoints, [&](const PositionPoint& p) {
      out.push_back(Vector::of(p.x, p.y, p.z) + shifts.shiftFor(p.frame));
    });
    return out;
  }

  World world;
  View view{0};
  Body* ship = nullptr;
  Body* escort = nullptr;
};

TEST_F(TraceShiftsTest, RelativeToTheTrackedBodyPointsKeepTheirOffsetFromItsPlaceNow) {
  world.traceFrames.watch(ship->id);
  for (int i = 0; i < 5; ++i)
    world.step();
  view.traceReference = TraceReference::TrackedBody;
  for (const Vector& p : drawn()) {
    EXPECT_EQ(p.x, 5.0);
    EXPECT_EQ(p.y, 2.0);
  }
  view.traceReference = TraceReference::World;
  const std::vector<Vector> recorded = drawn();
  ASSERT_EQ(recorded.size(), 5u);
  for (std::size_t i = 0; i < recorded.size(); ++i)
    EXPECT_EQ(recorded[i].x, static_cast<double>(i));
}

// The centre of mass moves at 2/4 of the ship's speed: the buoy holds half
// the mass.
TEST_F(TraceShiftsTest, RelativeToTheCentreOfMassPointsFollowItsMotion) {
  view.traceReference = TraceReference::CenterOfMass;
  for (int i = 0; i < 5; ++i)
    world.step();
  const std::vector<Vector> points = drawn();
  ASSERT_EQ(points.size(), 5u);
  // Point i was recorded at x = i with the centre at x = i / 2; the centre
  // is at 5 / 2 now.
  for (std::size_t i = 0; i < points.size(); ++i)
    EXPECT_DOUBLE_EQ(points[i].x, 2.5 + static_cast<double>(i) / 2.0) << i;
}

TEST_F(TraceShiftsTest, PointsFromBeforeTheWatchOrOfAGoneReferenceStayWhereTheyWere) {
  view.traceReference = TraceReference::TrackedBody;
  world.step();
  world.step();
  world.traceFrames.watch(ship->id);
  world.step();
  const std::vector<Vector> points = drawn();
  ASSERT_EQ(points.size(), 3u);
  EXPECT_EQ(points[0].x, 0.0);
  EXPECT_EQ(points[1].x, 1.0);
  EXPECT_EQ(points[2].x, 3.0);

  world.deleteBodyById(ship->id);
  EXPECT_FALSE(TraceShifts(view, world).active());
  EXPECT_EQ(drawn()[2].x, 2.0);
}

}  // namespace
