#include <QCoreApplication>
#include <QDialog>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QTimer>
#include <QWheelEvent>
#include <QtTest/QTest>

#include "tests/case_names.h"
#include "view_test_support.h"

namespace {

// Results of a few double operations on exact inputs: within 4 ulps.
void expectCamera(const View& v, double eyeZ, double focusZ) {
  EXPECT_DOUBLE_EQ(v.cameraPosition.z, eyeZ);
  EXPECT_DOUBLE_EQ(v.cameraFocus.z, focusZ);
}

void wheel(QWidget& w, int angleDelta) {
  const QPointF at(w.width() / 2.0, w.height() / 2.0);
  QWheelEvent event(at, w.mapToGlobal(at), QPoint(), QPoint(0, angleDelta), Qt::NoButton,
                    Qt::NoModifier, Qt::NoScrollPhase, false);
  QCoreApplication::sendEvent(&w, &event);
}

struct DragCase {
  const char* name;
  QPoint by;
};

class InputDrag : public ViewFixture, public ::testing::WithParamInterface<DragCase> {};

// A body in front of the origin moves with the pointer when the scene turns.
TEST_P(InputDrag, LeftDragTurnsTheSceneTheWayThePointerMoves) {
  const DragCase c = GetParam();
  addBody(Vector::of(0, 0, 150), 15.0, 1.0f, 0.0f, 0.0f);
  OrrenvaleGL& gl = openView(300, 300);
  gl.view()->gridlineEnabled = false;
  const auto before = centroid(gl.captureView(), pureRed());
  drag(gl, Qt::LeftButton, QPointF(150, 150), QPointF(150, 150) + c.by);
  const auto after = centroid(gl.captureView(), pureRed());
  ASSERT_TRUE(before && after);
  const QPointF moved = *after - *before;
  // The body sweeps along the drag: it moves at least 20 of the 60 pixels in
  // the drag's direction and far less across it.
  const QPointF dir = QPointF(c.by) / 60.0;
  EXPECT_GT(QPointF::dotProduct(moved, dir), 20.0);
  EXPECT_LT(std::abs(QPointF::dotProduct(moved, QPointF(-dir.y(), dir.x()))), 3.0);
}

INSTANTIATE_TEST_SUITE_P(Directions, InputDrag,
                         ::testing::Values(DragCase{"Right", {60, 0}}, DragCase{"Left", {-60, 0}},
                                           DragCase{"Up", {0, -60}}, DragCase{"Down", {0, 60}}),
                         [](const auto& p) { return std::string(p.param.name); });

struct CameraDragCase {
  const char* name;
  Qt::MouseButton button;
  Qt::KeyboardModifiers modifiers;
};

class InputCameraDrag : public ViewFixture, public ::testing::WithParamInterface<CameraDragCase> {};

// A right drag, and a Ctrl-left drag (a right-button press), neither selects
// nor turns the scene. Each move takes the camera by the whole travel since
// the press, 1% of the distance 400 per 40 pixels in a view 200 high: moves of
// 8, 16, 24, 32 and 40 pixels down add up to 3%, away from the scene. The
// factor is narrowed to single precision (relative 6e-8).
TEST_P(InputCameraDrag, MovesTheCameraWithoutSelectingOrTurning) {
  const Body* body = addBody(Vector(), 30.0, 1.0f, 0.0f, 0.0f);
  OrrenvaleGL& gl = openView(300, 200);
  gl.view()->selectedBodyID = body->id;
  gl.captureView();
  drag(gl, GetParam().button, QPointF(10, 100), QPointF(60, 140), GetParam().modifiers);
  EXPECT_EQ(gl.view()->selectedBodyID, body->id);
  EXPECT_EQ(gl.view()->trackball->rotation.w, 1.0);
  EXPECT_NEAR(gl.view()->cameraPosition.z, 412.0, 1e-4);
  EXPECT_NEAR(gl.view()->cameraFocus.z, 12.0, 1e-4);
}

INSTANTIATE_TEST_SUITE_P(Buttons, InputCameraDrag,
                         ::testing::Values(CameraDragCase{"Right", Qt::RightButton, {}},
                                           CameraDragCase{"CtrlLeft", Qt::LeftButton,
                                                          Qt::ControlModifier}),
                         [](const auto& p) { return std::string(p.param.name); });

using Input = ViewFixture;

TEST_F(Input, WithTheTrackballDisabledClicksSelectButDragsMoveNothing) {
  const Body* body = addBody(Vector(), 30.0, 1.0f, 0.0f, 0.0f);
  OrrenvaleGL& gl = openView(300, 200);
  gl.view()->trackballEnabled = false;
  gl.captureView();
  drag(gl, Qt::LeftButton, QPointF(150, 100), QPointF(250, 150));
  EXPECT_EQ(gl.view()->selectedBodyID, body->id);
  EXPECT_EQ(gl.view()->trackball->rotation.w, 1.0);
  drag(gl, Qt::RightButton, QPointF(150, 100), QPointF(150, 180));
  expectCamera(*gl.view(), 400, 0);
}

struct WheelCase {
  std::vector<int> angleDeltas;  // 120 per notch
  double eyeZ;
};

class InputWheel : public ViewFixture, public ::testing::WithParamInterface<WheelCase> {};

// A touchpad scrolls a notch in many small deltas: they add up, and each
// whole notch zooms one step, as a wheel's notch does.
TEST_P(InputWheel, WheelZoomsByWholeNotchesOnly) {
  OrrenvaleGL& gl = openView(300, 200);
  for (int delta : GetParam().angleDeltas)
    wheel(gl, delta);
  expectCamera(*gl.view(), GetParam().eyeZ, 0);
}

INSTANTIATE_TEST_SUITE_P(Deltas, InputWheel,
                         ::testing::Values(WheelCase{{120}, 360}, WheelCase{{-120}, 440},
                                           WheelCase{{60}, 400}, WheelCase{{-119}, 400},
                                           WheelCase{{480}, 360},
                                           WheelCase{std::vector<int>(5, 30), 360},
                                           WheelCase{std::vector<int>(8, 30), 324}),
                         caseNames({"NotchIn", "NotchOut", "HalfNotch", "AlmostANotchOut",
                                    "FourNotches", "FiveSmallDeltas", "EightSmallDeltas"}));

using Commands = ViewFixture;

TEST_F(Commands, SelectNextAndPreviousSkipDeletedIdentifiersAndWrap) {
  OrrenvaleGL& gl = openView(200, 200);
  View& v = *gl.view();
  gl.keySelectNext();
  EXPECT_EQ(v.selectedBodyID, 0);
  for (int i = 0; i < 4; ++i) {
    world().createBody();
  }
  world().deleteBodyById(102);
  ASSERT_EQ(world().nextBodyId, 104);

  gl.keySelectNext();
  EXPECT_EQ(v.selectedBodyID, 100);
  v.selectedBodyID = 0;
  gl.keySelectPrev();
  EXPECT_EQ(v.selectedBodyID, 103);

  v.selectedBodyID = 101;
  gl.keySelectNext();
  EXPECT_EQ(v.selectedBodyID, 103);
  gl.keySelectNext();
  EXPECT_EQ(v.selectedBodyID, 100);
  gl.keySelectPrev();
  EXPECT_EQ(v.selectedBodyID, 103);
  gl.keySelectPrev();
  EXPECT_EQ(v.selectedBodyID, 101);
}

TEST_F(Commands, DeleteRemovesTheSelectedBodyAndKeepsItsIdentifier) {
  OrrenvaleGL& gl = openView(200, 200);
  world().createBody();
  const int id = world().createBody()->id;
  gl.view()->selectedBodyID = id;
  gl.keyDelete();
  EXPECT_EQ(world().findBodyById(id), nullptr);
  EXPECT_EQ(world().bodies->count(), 1);
  EXPECT_EQ(gl.view()->selectedBodyID, id);
  gl.keyDelete();
  EXPECT_EQ(world().bodies->count(), 1);
}

TEST_F(Commands, PanAndZoomCommandsMoveTheCamera) {
  OrrenvaleGL& gl = openView(200, 200);
  View& v = *gl.view();
  host.panType_ = kPanTypeXZ;
  gl.keyPanUp();
  EXPECT_DOUBLE_EQ(v.cameraFocus.z, 400.0 / 30.0);
  gl.keyPanDown();
  gl.keyPanRight();
  gl.keyPanLeft();
  EXPECT_NEAR(v.cameraFocus.length(), 0.0, 1e-12);  // four roundings of 400/30
  gl.keyZoomIn();
  EXPECT_NEAR(v.cameraPosition.z, 360.0, 1e-12);
  gl.keyZoomOut();
  EXPECT_NEAR(v.cameraPosition.z, 396.0, 1e-12);
}

using Redraw = ViewFixture;

// 24 frames a second; half a second gives about 12. The window stands apart
// from the windows of other tests on the same display, whose comings and
// goings would cause repaints of their own.
TEST_F(Redraw, TimerDrawsContinuouslyAndPausesWhileADialogIsModal) {
  OrrenvaleGL& gl = openView(200, 200);
  gl.move(900, 700);
  QSignalSpy frames(&gl, &QOpenGLWidget::frameSwapped);
  ASSERT_TRUE(QTest::qWaitFor([&] { return frames.count() >= 6; }, 5000));

  QDialog dialog;
  dialog.setModal(true);
  dialog.setGeometry(600, 100, 100, 100);
  dialog.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&dialog));
  ASSERT_NE(QApplication::activeModalWidget(), nullptr);
  // Frames drawn while twelve redraw intervals pass: the timer would draw
  // twelve; other windows of the shared test display may cause a stray
  // repaint or two.
  const auto framesOver = [&](int intervals) {
    int ticks = 0;
    QTimer tick;
    QObject::connect(&tick, &QTimer::timeout, [&] { ++ticks; });
    tick.start(42);
    frames.clear();
    EXPECT_TRUE(QTest::qWaitFor([&] { return ticks >= intervals; }, 10000));
    return frames.count();
  };
  // Repaints that the dialog's appearance itself causes settle first.
  ASSERT_TRUE(QTest::qWaitFor([&] { return framesOver(1) == 0; }, 5000));
  EXPECT_LE(framesOver(12), 2);

  dialog.close();
  ASSERT_TRUE(QTest::qWaitFor([&] { return frames.count() >= 6; }, 5000));
}

}  // namespace
