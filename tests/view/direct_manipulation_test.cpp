#include <QKeyEvent>
#include <QtTest/QTest>

#include "view/view_ray.h"
#include "view_test_support.h"

namespace {

// The pixel where a world point is drawn, in the view's own coordinates.
QPointF pixelOf(const OrrenvaleGL& gl, const Vector& p) {
  const std::optional<PixelPoint> at = projectToView(*gl.view(), p);
  EXPECT_TRUE(at);
  return at ? QPointF(at->x, at->yTop) / gl.devicePixelRatio() : QPointF();
}

double axis(const Vector& v, int a) {
  return a == 0 ? v.x : a == 1 ? v.y : v.z;
}

class DirectManipulation : public ViewFixture {
 protected:
  void SetUp() override {
    ViewFixture::SetUp();
    host.editing_ = true;
  }
};

struct PlaneCase {
  const char* name;
  int panType;
  Vector camera;
  int fixedAxis;
};

class ShiftDrag : public DirectManipulation, public ::testing::WithParamInterface<PlaneCase> {};

// The body follows the pointer in the pan plane through the grabbed point:
// it ends under the pointer (where OpenGL's own picking in a wide, turned
// view finds it), and the component across the plane keeps its bits. The
// drag is reported once, when it ends.
TEST_P(ShiftDrag, MovesTheBodyInThePanPlaneOnly) {
  const PlaneCase c = GetParam();
  host.panType_ = c.panType;
  Body* body = addBody(Vector::of(20, 10, 5), 15.0, 1.0f, 0.0f, 0.0f);
  const Vector start = body->position;
  OrrenvaleGL& gl = openView(360, 240);
  gl.view()->cameraPosition = c.camera;
  gl.view()->trackball->rotation.setRollPitchYaw(0.3, -0.5, 0.2);
  const double turned = gl.view()->trackball->rotation.w;
  gl.captureView();
  const QPointF from = pixelOf(gl, start);
  const QPointF to = from + QPointF(30, -25);
  drag(gl, Qt::LeftButton, from, to, Qt::ShiftModifier);

  EXPECT_EQ(axis(body->position, c.fixedAxis), axis(start, c.fixedAxis));
  EXPECT_FALSE(sameBits(body->position, start));
  EXPECT_EQ(gl.view()->selectedBodyID, body->id);
  EXPECT_EQ(gl.view()->trackball->rotation.w, turned);
  gl.captureView();
  EXPECT_EQ(gl.pick(to.x(), to.y()), body->id);
  ASSERT_EQ(host.drags.size(), 1u);
  EXPECT_EQ(host.drags[0].kind, BodyDrag::Kind::Move);
  EXPECT_TRUE(sameBits(host.drags[0].before, start));
  EXPECT_TRUE(sameBits(host.drags[0].after, body->position));
}

INSTANTIATE_TEST_SUITE_P(Planes, ShiftDrag,
                         ::testing::Values(PlaneCase{"XY", kPanTypeXY, Vector::of(0, 0, 400), 2},
                                           PlaneCase{"XZ", kPanTypeXZ, Vector::of(0, 300, 300), 1},
                                           PlaneCase{"YZ", kPanTypeYZ, Vector::of(300, 0, 300), 0}),
                         [](const auto& p) { return std::string(p.param.name); });

// The tip of the velocity vector is drawn at position + velocity; dragging it
// sets the velocity in the pan plane and keeps the component across it.
TEST_F(DirectManipulation, DraggingTheVelocityTipSetsTheVelocity) {
  Body* body = addBody(Vector(), 10.0, 1.0f, 0.0f, 0.0f);
  body->velocity = Vector::of(80, 0, -3);
  OrrenvaleGL& gl = openView(300, 300);
  gl.captureView();
  const QPointF tip = pixelOf(gl, body->velocity);
  moveWithButtons(gl, tip, Qt::NoButton, Qt::ShiftModifier);
  EXPECT_EQ(gl.cursor().shape(), Qt::CrossCursor);
  moveWithButtons(gl, pixelOf(gl, body->position), Qt::NoButton, Qt::ShiftModifier);
  EXPECT_EQ(gl.cursor().shape(), Qt::OpenHandCursor);
  moveWithButtons(gl, QPointF(10, 10), Qt::NoButton, Qt::ShiftModifier);
  EXPECT_EQ(gl.cursor().shape(), Qt::ArrowCursor);

  drag(gl, Qt::LeftButton, tip, tip + QPointF(0, -40), Qt::ShiftModifier);
  EXPECT_EQ(body->velocity.z, -3.0);
  EXPECT_GT(body->velocity.y, 10.0);
  // The pointer moved straight up: x changes only by the rounding of the
  // pixel position (far below a thousandth of a world unit here).
  EXPECT_NEAR(body->velocity.x, 80.0, 1e-3);
  EXPECT_TRUE(sameBits(body->position, Vector()));
  ASSERT_EQ(host.drags.size(), 1u);
  EXPECT_EQ(host.drags[0].kind, BodyDrag::Kind::Aim);
  EXPECT_TRUE(sameBits(host.drags[0].after, body->velocity));
}

// Without Shift, or outside design mode, a left drag over a body turns the
// scene as it always has, and moves nothing; the pointer stays an arrow.
TEST_F(DirectManipulation, WithoutShiftOrOutsideDesignModeTheDragTurnsTheScene) {
  Body* body = addBody(Vector(), 30.0, 1.0f, 0.0f, 0.0f);
  OrrenvaleGL& gl = openView(300, 300);
  for (const bool designing : {true, false}) {
    host.editing_ = designing;
    const Qt::KeyboardModifiers modifiers = designing ? Qt::NoModifier : Qt::ShiftModifier;
    gl.view()->trackball->rotation = Quaternion(1, 0, 0, 0);
    gl.captureView();
    moveWithButtons(gl, QPointF(150, 150), Qt::NoButton, modifiers);
    EXPECT_EQ(gl.cursor().shape(), Qt::ArrowCursor);
    drag(gl, Qt::LeftButton, QPointF(150, 150), QPointF(200, 150), modifiers);
    EXPECT_TRUE(sameBits(body->position, Vector()));
    EXPECT_LT(gl.view()->trackball->rotation.w, 1.0);
    EXPECT_EQ(gl.view()->selectedBodyID, body->id);
  }
  EXPECT_TRUE(host.drags.empty());
}

TEST_F(DirectManipulation, EscapeEndsADragWithTheBodyBackInPlace) {
  Body* body = addBody(Vector::of(1, 2, 3), 30.0, 1.0f, 0.0f, 0.0f);
  OrrenvaleGL& gl = openView(300, 300);
  gl.captureView();
  const QPointF from = pixelOf(gl, body->position);
  QTest::mousePress(&gl, Qt::LeftButton, Qt::ShiftModifier, from.toPoint());
  moveWithButtons(gl, from + QPointF(50, 0), Qt::LeftButton, Qt::ShiftModifier);
  EXPECT_NE(body->position.x, 1.0);
  QTest::keyClick(&gl, Qt::Key_Escape, Qt::ShiftModifier);
  QTest::mouseRelease(&gl, Qt::LeftButton, Qt::ShiftModifier, (from + QPointF(50, 0)).toPoint());
  EXPECT_TRUE(sameBits(body->position, Vector::of(1, 2, 3)));
  EXPECT_TRUE(host.drags.empty());
}

}  // namespace
