#include "view/camera.h"

#include <gtest/gtest.h>

#include "engine/world.h"
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
                      PanCase{"XYLeft", kPanTypeXY, false, -1, Vector::of(-kStep, 0, 0)},
                      PanCase{"XZUp", kPanTypeXZ, true, 1, Vector::of(0, 0, kStep)},
                      PanCase{"XZRight", kPanTypeXZ, false, 1, Vector::of(kStep, 0, 0)},
                      PanCase{"YZRight", kPanTypeYZ, false, 1, Vector::of(0, kStep, 0)},
                      PanCase{"YZDown", kPanTypeYZ, true, -1, Vector::of(0, 0, -kStep)},
                      PanCase{"UnknownPlane", 0, false, 1, Vector::of(0, 0, 0)}),
    [](const auto& p) { return std::string(p.param.name); });

TEST(CameraZoom, FreeCameraMovesATenthOfItsDistanceByTheSignOfZ) {
  View v(0);
  zoomView(v, 2.0);
  expectVector(v.cameraPosition, 0, 0, 360);
  View w(0);
  zoomView(w, -5.0);
  expectVector(w.cameraPosition, 0, 0, 440);
  zoomView(w, 0.0);
  expectVector(w.cameraPosition, 0, 0, 440);
  expectVector(w.cameraFocus, 0, 0, 0);
}

TEST(CameraZoom, TrackingCameraScalesItsDistanceAndNeverPassesTheTarget) {
  View v(0);
  v.trackCenterOfMass = true;
  zoomView(v, 2.0);
  EXPECT_DOUBLE_EQ(v.cameraAutodistance, 180.0);
  v.cameraAutodistance = 200.0;
  zoomView(v, -2.0);
  EXPECT_DOUBLE_EQ(v.cameraAutodistance, 220.0);
  // 1 - 20/20 would put the camera on the tracked point.
  zoomView(v, 20.0);
  EXPECT_DOUBLE_EQ(v.cameraAutodistance, 220.0);
  expectVector(v.cameraPosition, 0, 0, 400);
}

class CameraTracking : public ::testing::Test {
 protected:
  Body* add(Vector position, Vector velocity) {
    Body* b = world.createBody();
    b->position = position;
    b->velocity = velocity;
    return b;
  }
  World world;
  View v{0};
};

TEST_F(CameraTracking, BodyIsSeenFromBehindAlongItsMotion) {
  Body* b = add(Vector::of(10, 20, 30), Vector::of(5, 0, 0));
  v.trackBody = true;
  v.trackBodyID = b->id;
  trackView(v, world);
  expectVector(v.cameraFocus, 10, 20, 30);
  expectVector(v.cameraPosition, 10 - 200, 20, 30);
}

TEST_F(CameraTracking, BodyWinsOverCentreOfMassAndRestLooksAlongOneOneOne) {
  add(Vector::of(1000, 0, 0), Vector::of(0, 3, 0));
  Body* still = add(Vector::of(10, 20, 30), Vector());
  v.trackBody = true;
  v.trackCenterOfMass = true;
  v.trackBodyID = still->id;
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
  Body* b = add(Vector::of(10, 20, 30), Vector::of(5, 0, 0));
  v.trackBody = true;
  v.trackBodyID = b->id;
  world.deleteBodyById(b->id);
  trackView(v, world);
  EXPECT_EQ(v.trackBodyID, 0);
  EXPECT_TRUE(v.trackBody);
  expectVector(v.cameraPosition, 0, 0, 400);
  expectVector(v.cameraFocus, 0, 0, 0);
}

// The drag factor is narrowed to single precision (relative error up to
// 6e-8), times a distance of 400.
constexpr double kSingleFactor = 1e-4;

void expectNear(const Vector& v, double x, double y, double z) {
  EXPECT_NEAR(v.x, x, kSingleFactor);
  EXPECT_NEAR(v.y, y, kSingleFactor);
  EXPECT_NEAR(v.z, z, kSingleFactor);
}

// Height 200, press at y = 100. Every event moves camera and focus by the
// whole travel since the press: 40 pixels down is (40/20)/200 = 1% of the
// camera-focus vector away from the scene.
TEST(CameraRightDrag, MovesAlongTheViewingDirectionByTheTravelSinceThePress) {
  View v(0);
  v.trackball->setSize(300, 200);
  v.trackball->zoomStartY = 100;
  rightDragView(v, 140);
  expectNear(v.cameraPosition, 0, 0, 404);
  expectNear(v.cameraFocus, 0, 0, 4);
  rightDragView(v, 140);
  expectNear(v.cameraPosition, 0, 0, 408);

  View up(0);
  up.trackball->setSize(300, 200);
  up.trackball->zoomStartY = 100;
  rightDragView(up, 60);
  expectNear(up.cameraPosition, 0, 0, 396);
  expectNear(up.cameraFocus, 0, 0, -4);
}

}  // namespace
