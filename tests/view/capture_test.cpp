#include "view_test_support.h"

namespace {

struct CaptureShape {
  int w;
  int h;
};

class Capture : public ViewFixture, public ::testing::WithParamInterface<CaptureShape> {};

// A body above the centre is in the top half of the image: rows are upright.
TEST_P(Capture, ImageHasTheViewsSizeWithoutAlphaAndIsUpright) {
  const CaptureShape c = GetParam();
  addBody(Vector::of(0, 60, 0), 15.0, 1.0f, 0.0f, 0.0f);
  OrrenvaleGL& gl = openView(c.w, c.h);
  const QImage image = gl.captureView();
  EXPECT_EQ(image.width(), c.w);
  EXPECT_EQ(image.height(), c.h);
  EXPECT_EQ(image.bytesPerLine(), 4 * c.w);
  EXPECT_FALSE(image.hasAlphaChannel());
  int top = 0;
  int bottom = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      if (pureRed()(image.pixel(x, y))) {
        (y < c.h / 2 ? top : bottom) += 1;
      }
    }
  }
  EXPECT_GT(top, 50);
  EXPECT_EQ(bottom, 0);
  EXPECT_EQ(qAlpha(image.pixel(0, 0)), 255);
}

INSTANTIATE_TEST_SUITE_P(Shapes, Capture,
                         ::testing::Values(CaptureShape{300, 200}, CaptureShape{200, 300}),
                         [](const auto& p) {
                           return std::to_string(p.param.w) + "x" + std::to_string(p.param.h);
                         });

using CaptureHidden = ViewFixture;

TEST_F(CaptureHidden, ViewNeverShownGivesABlackImageOfItsSize) {
  OrrenvaleGL gl;
  gl.resize(120, 80);
  const QImage image = gl.captureView();
  EXPECT_EQ(image.size(), QSize(120, 80));
  EXPECT_TRUE(isBlack(image.pixel(60, 40)));
}

}  // namespace
