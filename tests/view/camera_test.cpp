#include "view/camera.h"

#include <gtest/gtest.h>

#include "tests/engine/test_support.h"
#include "view/view.h"
#include "view/view_host.h"

namespace {

// Results of a few double operations on exact inputs: within 4 ulps.
void expectVector(const Vector& v, double x, double y, double z) {
  EXPECT_DOUBLE_EQ(v.x, x);
  EXPECT_DOUBLE_EQ(v.y, y);
  EXPECT_DOUBLE_EQ(v.z, z);
}

struct PanCase {
  const char* name;
  int panType;
  bool vertical;
  int sign;
  Vector move;  // expected movement of camera and focus
};

class CameraPan : public ::testing::TestWithParam<PanCase> {};

// The default camera sits 400 from its focus, so one pan step is 400/30.
TEST_P(CameraPan, MovesCameraAndFocusOneStepInThePlane) {
  const PanCase c = GetParam();
  View v(0);
  panView(v, c.panType, c.vertical, c.sign);
  expectVector(v.cameraFocus, c.move.x, c.move.y, c.move.z);
  expectVector(v.cameraPosition, c.move.x, c.move.y, 400.0 + c.move.z);
}

constexpr double kStep = 13.333333333333334;

INSTANTIATE_TEST_SUITE_P(
    Planes, CameraPan,
    ::testing::Values(PanCase{"XYRight", kPanTypeXY, false, 1, Vector::of(kStep, 0, 0)},
                      PanCase{"XYUp", kPanTypeXY, true, 1, Vector::of(0, kStep, 0)},
                      PanCase{"XZUp", kPanTypeXZ, true, 1, Vector::of(0, 0, kStep)},
                      PanCase{"XZRight", kPanTypeXZ, false, 1, Vector::of(kStep, 0, 0)},
                      PanCase{"YZRight", kPanTypeYZ, false, 1, Vector::of(0, kStep, 0)},
                      PanCase{"YZDown", kPanTypeYZ, true, -1, Vector::of(0, 0, -kStep)},
                      PanCase{"UnknownPlane", 0, false, 1, Vector::of(0, 0, 0)}),
    [](const auto& p) { return std::string(p.param.name); });

// A tracking camera scales its distance by 1 - z/20 and never passes the
// target (the free camera's steps are tested through the keys and the wheel).
TEST(CameraZoom, TrackingCameraScalesItsDistance) {
  View t(0);
  t.trackCenterOfMass = true;
  zoomView(t, 2.0);
  EXPECT_DOUBLE_EQ(t.cameraAutodistance, 180.0);
  zoomView(t, -2.0);
  EXPECT_DOUBLE_EQ(t.cameraAutodistance, 198.0);
  // 1 - 20/20 would put the camera on the tracked point.
  zoomView(t, 20.0);
  EXPECT_DOUBLE_EQ(t.cameraAutodistance, 198.0);
  expectVector(t.cameraPosition, 0, 0, 400);
}

class CameraTracking : public ::testing::Test {
 protected:
  World world;
  View v{0};
};

// A body is seen from behind along its motion, and wins over the centre of
// mass; at rest, the camera looks along (1, 1, 1).
TEST_F(CameraTracking, BodyIsSeenFromBehindAlongItsMotionAndWinsOverTheCentreOfMass) {
  addBody(world, Vector::of(1000, 0, 0), Vector::of(0, 3, 0));
  Body* b = addBody(world, Vector::of(10, 20, 30), Vector::of(5, 0, 0));
  v.trackBody = true;
  v.trackCenterOfMass = true;
  v.trackBodyID = b->id;
  trackView(v, world);
  expectVector(v.cameraFocus, 10, 20, 30);
  expectVector(v.cameraPosition, 10 - 200, 20, 30);
  b->velocity = Vector();
  trackView(v, world);
  expectVector(v.cameraPosition, 10 - 200, 20 - 200, 30 - 200);
}

TEST_F(CameraTracking, EmptyWorldCentreOfMassIsSeenFromMinusOneOneOne) {
  v.trackCenterOfMass = true;
  v.cameraAutodistance = 50;
  trackView(v, world);
  expectVector(v.cameraFocus, 0, 0, 0);
  expectVector(v.cameraPosition, -50, -50, -50);
}

TEST_F(CameraTracking, VanishedBodyStopsTrackingAndLeavesTheCameraStill) {
  Body* b = addBody(world, Vector::of(10, 20, 30), Vector::of(5, 0, 0));
  v.trackBody = true;
  v.trackBodyID = b->id;
  world.deleteBodyById(b->id);
  trackView(v, world);
  EXPECT_EQ(v.trackBodyID, 0);
  EXPECT_TRUE(v.trackBody);
  expectVector(v.cameraPosition, 0, 0, 400);
  expectVector(v.cameraFocus, 0, 0, 0);
}

}  // namespace
