#include "view/trace_shifts.h"

#include <gtest/gtest.h>

#include <tuple>
#include <vector>

#include "tests/engine/test_support.h"
#include "view/view.h"

namespace {

// Without gravity a ship and its escort move side by side at (1, 0, 0), the
// escort 2 units above, while a buoy of twice their mass stays 10 units below
// the start. Relative to the ship, every escort point is 2 units above the
// ship's current place; in the world they lie along a line, one unit apart.
class TraceShiftsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    world.gravitationalConstant = 0.0;
    world.timeStep = 1.0;
    ship = addBody(world, vec(0, 0, 0), vec(1, 0, 0), 1.0, 0.1);
    escort = addBody(world, vec(0, 2, 0), vec(1, 0, 0), 1.0, 0.1);
    escort->traceEnable = true;
    addBody(world, vec(0, -10, 0), Vector(), 2.0, 0.1);
    view.trackBodyID = ship->id;
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
  takeSteps(world, 5);
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
  takeSteps(world, 5);
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
  EXPECT_EQ(std::tuple(points[0].x, points[1].x, points[2].x), std::tuple(0.0, 1.0, 3.0));

  world.deleteBodyById(ship->id);
  EXPECT_FALSE(TraceShifts(view, world).active());
  EXPECT_EQ(drawn()[2].x, 2.0);
}

}  // namespace
