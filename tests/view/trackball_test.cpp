#include "view/trackball.h"

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>

namespace {

// Renormalising a unit quaternion may move each component by a few ulps.
constexpr double kUnitRounding = 1e-14;

Trackball sized(double w, double h) {
  Trackball tb(1.0);
  tb.setSize(w, h);
  return tb;
}

TEST(Trackball, CentreProjectsToThePoleAndCornerIsPulledInsideTheOutline) {
  Trackball tb = sized(200, 200);
  tb.beginDrag(0, 0);
  Vector corner = Vector::of(tb.lastX, tb.lastY, 0.0);
  EXPECT_EQ(corner.x, -1.0);
  EXPECT_EQ(corner.y, 1.0);
  tb.projectToSphere(corner);
  EXPECT_DOUBLE_EQ(corner.x, -0.95 / std::sqrt(2.0));
  EXPECT_DOUBLE_EQ(corner.y, 0.95 / std::sqrt(2.0));
  EXPECT_EQ(corner.z, 0.0);

  tb.beginDrag(100, 100);
  Vector centre = Vector::of(tb.lastX, tb.lastY, 0.0);
  tb.projectToSphere(centre);
  EXPECT_EQ(std::tuple(centre.x, centre.y, centre.z), std::tuple(0.0, 0.0, 1.0));
}

// A drag from the centre to a point 30 degrees away on the sphere (x = 0.5)
// turns the scene by 60 degrees: the point in front of the centre, (0, 0, 1),
// goes to (sin 60, 0, cos 60).
TEST(Trackball, DragTurnsTwiceTheAngleOnTheSphere) {
  Trackball tb = sized(200, 200);
  tb.beginDrag(100, 100);
  tb.drag(150, 100);
  const auto m = tb.glMatrix();
  EXPECT_NEAR(m[8], std::sqrt(3.0) / 2.0, kUnitRounding);
  EXPECT_NEAR(m[9], 0.0, kUnitRounding);
  EXPECT_NEAR(m[10], 0.5, kUnitRounding);
}

// Whatever does not move the pointer while a drag is on leaves the rotation
// as it was; so do the release, wherever it is, and dragging after it.
TEST(Trackball, RotationChangesOnlyWhenTheDraggedPointerMoves) {
  Trackball tb = sized(200, 200);
  tb.rotation = Quaternion(0.3, -0.2, 0.5);
  const Quaternion before = tb.rotation;
  const auto expectUnchanged = [&] {
    EXPECT_NEAR((tb.rotation - before).norm(), 0, kUnitRounding);
  };
  tb.beginDrag(40, 170);
  tb.endDrag(40, 170);
  expectUnchanged();

  tb.beginDrag(40, 170);
  tb.drag(40, 170);
  tb.drag(40, 170);
  tb.endDrag(190, 10);
  expectUnchanged();

  tb.drag(190, 10);
  expectUnchanged();
  EXPECT_FALSE(tb.dragging);
}

}  // namespace
