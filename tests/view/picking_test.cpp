#include <QtTest/QTest>

#include "view_test_support.h"

namespace {

class Picking : public ViewFixture, public ::testing::WithParamInterface<QSize> {};

// Finds where each body is drawn and clicks there, with the grid on (its
// lines also hit, with no name).
TEST_P(Picking, ClickSelectsTheBodyDrawnUnderThePointerAndEmptySpaceClears) {
  const Body* red = addBody(Vector::of(-110, 0, 0), 20.0, 1.0f, 0.0f, 0.0f);
  const Body* green = addBody(Vector::of(60, 70, 0), 20.0, 0.0f, 1.0f, 0.0f);
  const Body* blue = addBody(Vector::of(70, -60, 60), 15.0, 0.0f, 0.0f, 1.0f);
  OrrenvaleGL& gl = openView(GetParam().width(), GetParam().height());
  const QImage image = gl.captureView();
  const std::pair<const Body*, PixelTest> bodies[] = {
      {red, pureRed()}, {green, pureGreen()}, {blue, pureBlue()}};
  for (const auto& [body, colour] : bodies) {
    const auto at = centroid(image, colour);
    ASSERT_TRUE(at.has_value()) << body->name;
    QTest::mouseClick(&gl, Qt::LeftButton, Qt::NoModifier, at->toPoint());
    EXPECT_EQ(gl.view()->selectedBodyID, body->id) << body->name;
  }
  QTest::mouseClick(&gl, Qt::LeftButton, Qt::NoModifier, QPoint(2, 2));
  EXPECT_EQ(gl.view()->selectedBodyID, 0);
}

INSTANTIATE_TEST_SUITE_P(Shapes, Picking,
                         ::testing::Values(QSize(300, 200), QSize(200, 300), QSize(400, 400),
                                           QSize(517, 311)),
                         sizeName);

class PickingDepth : public ViewFixture, public ::testing::WithParamInterface<bool> {};

// The nearer body hides the farther one, yet the farther is selected: the hit
// reaching deepest wins, whatever the order of the bodies in the world.
TEST_P(PickingDepth, OfTwoBodiesUnderThePointerTheFartherIsSelected) {
  const bool nearFirst = GetParam();
  const Vector farAt = Vector::of(0, 0, 0);
  const Vector nearAt = Vector::of(0, 0, 150);
  const Body* first = addBody(nearFirst ? nearAt : farAt, nearFirst ? 10 : 30, 1, 0, 0);
  const Body* second = addBody(nearFirst ? farAt : nearAt, nearFirst ? 30 : 10, 0, 1, 0);
  const Body* farther = nearFirst ? second : first;
  OrrenvaleGL& gl = openView(320, 240);
  gl.captureView();
  QTest::mouseClick(&gl, Qt::LeftButton, Qt::NoModifier, QPoint(160, 120));
  EXPECT_EQ(gl.view()->selectedBodyID, farther->id);
}

INSTANTIATE_TEST_SUITE_P(Orders, PickingDepth, ::testing::Values(false, true), [](const auto& p) {
  return std::string(p.param ? "NearFirst" : "FarFirst");
});

using PickingContexts = ViewFixture;

// The second window, drawn last, looks somewhere else; a pick in the first
// must use the first window's own camera.
TEST_F(PickingContexts, PickUsesTheClickedViewsOwnContext) {
  const Body* body = addBody(Vector(), 30.0, 1.0f, 0.0f, 0.0f);
  OrrenvaleGL& first = openView(300, 200);
  OrrenvaleGL& second = openView(300, 200);
  second.view()->cameraPosition = Vector::of(5000, 0, 400);
  second.view()->cameraFocus = Vector::of(5000, 0, 0);
  first.captureView();
  second.captureView();
  QTest::mouseClick(&first, Qt::LeftButton, Qt::NoModifier, QPoint(150, 100));
  EXPECT_EQ(first.view()->selectedBodyID, body->id);
  QTest::mouseClick(&second, Qt::LeftButton, Qt::NoModifier, QPoint(150, 100));
  EXPECT_EQ(second.view()->selectedBodyID, 0);
}

}  // namespace
