#include <GL/gl.h>

#include <QtTest/QTest>
#include <cmath>

#include "tests/case_names.h"
#include "view_test_support.h"

namespace {

using Rendering = ViewFixture;

// The grid colour 0.1 becomes 25 or 26 in 8 bits; 1 step of rounding.
constexpr int kByteRounding = 1;

bool isGrid(QRgb p) {
  return near(p, 26, 26, 26, kByteRounding);
}

TEST_F(Rendering, EmptyWorldShowsOnlyTheGridAndTheMarkerOnBlack) {
  OrrenvaleGL& gl = openView(400, 300);
  const QImage image = gl.captureView();
  EXPECT_TRUE(isBlack(image.pixel(0, 0)));
  EXPECT_TRUE(isBlack(image.pixel(399, 299)));
  EXPECT_GT(countPixels(image, isGrid), 500);
  // Outside the small marker at the centre, every pixel is background or grid.
  const auto other = [](QRgb p) { return !isBlack(p) && !isGrid(p); };
  EXPECT_EQ(countPixels(image, other), countPixels(image.copy(180, 130, 40, 40), other));
  // With the grid switched off, neither lattice nor marker.
  gl.view()->gridlineEnabled = false;
  EXPECT_EQ(countPixels(gl.captureView(), [](QRgb p) { return !isBlack(p); }), 0);
}

class Capture : public ViewFixture, public ::testing::WithParamInterface<QSize> {};

// A body above the centre is in the top half of the image: rows are upright.
TEST_P(Capture, ImageHasTheViewsSizeWithoutAlphaAndIsUpright) {
  const int w = GetParam().width();
  const int h = GetParam().height();
  addBody(Vector::of(0, 60, 0), 15.0, 1.0f, 0.0f, 0.0f);
  OrrenvaleGL& gl = openView(w, h);
  const QImage image = gl.captureView();
  EXPECT_EQ(image.size(), GetParam());
  EXPECT_EQ(image.bytesPerLine(), 4 * w);
  EXPECT_FALSE(image.hasAlphaChannel());
  EXPECT_EQ(qAlpha(image.pixel(0, 0)), 255);
  EXPECT_GT(countPixels(image.copy(0, 0, w, h / 2), pureRed()), 50);
  EXPECT_EQ(countPixels(image.copy(0, h / 2, w, h - h / 2), pureRed()), 0);
}

INSTANTIATE_TEST_SUITE_P(Shapes, Capture, ::testing::Values(QSize(300, 200), QSize(200, 300)),
                         sizeName);

TEST_F(Rendering, ViewNeverShownCapturesBlackAtItsSizeAndPicksNothing) {
  addBody(Vector(), 30.0, 1.0f, 0.0f, 0.0f);
  OrrenvaleGL gl(host);
  gl.resize(120, 80);
  EXPECT_EQ(gl.pick(10, 10), 0);
  const QImage image = gl.captureView();
  EXPECT_EQ(image.size(), QSize(120, 80));
  EXPECT_TRUE(isBlack(image.pixel(60, 40)));
}

// True when some pixel within 4 pixels of (x, y) passes the test.
bool anyAround(const QImage& image, int x, int y, const PixelTest& test) {
  return countPixels(image.copy(x - 4, y - 4, 9, 9), test) > 0;
}

bool markerRed(QRgb p) {
  return qRed(p) == 255 && qGreen(p) < 200 && qBlue(p) < 200;
}
bool markerGreen(QRgb p) {
  return qGreen(p) == 255 && qRed(p) < 200 && qBlue(p) < 200;
}
bool white(QRgb p) {
  return near(p, 255, 255, 255, kByteRounding);
}

// Close up (camera 40 units away) the marker's diamonds reach 90 pixels out:
// the x diamond is red towards +x and white towards -x, the y diamond green
// towards +y.
TEST_F(Rendering, AxisMarkerSitsAtTheOriginWithColouredPositiveTips) {
  OrrenvaleGL& gl = openView(300, 300);
  gl.view()->cameraPosition = Vector::of(0, 0, 40);
  const QImage image = gl.captureView();
  EXPECT_TRUE(anyAround(image, 150 + 60, 150, markerRed));
  EXPECT_FALSE(anyAround(image, 150 - 60, 150, markerRed));
  EXPECT_TRUE(anyAround(image, 150 - 60, 150, white));
  EXPECT_TRUE(anyAround(image, 150, 150 - 60, markerGreen));
  EXPECT_FALSE(anyAround(image, 150, 150 + 60, markerGreen));
}

// A sphere lit from the viewer is brightest at its centre and darker towards
// its rim; the selected body is drawn in its flat colour everywhere.
TEST_F(Rendering, SelectedBodyIsFlatAndOthersAreShaded) {
  Body* body = addBody(Vector(), 50.0, 0.8f, 0.2f, 0.2f);
  OrrenvaleGL& gl = openView(300, 300);
  gl.view()->gridlineEnabled = false;
  // The sphere's outline lies about 45 pixels from the centre at distance 400.
  const QPoint centre(150, 150);
  const QPoint rim(150 + 38, 150);

  const QImage lit = gl.captureView();
  EXPECT_GT(qRed(lit.pixel(centre)), 3 * qGreen(lit.pixel(centre)));
  EXPECT_GT(qRed(lit.pixel(centre)), qRed(lit.pixel(rim)) + 20);

  gl.view()->selectedBodyID = body->id;
  const QImage flat = gl.captureView();
  EXPECT_TRUE(near(flat.pixel(centre), 204, 51, 51, kByteRounding));
  EXPECT_TRUE(near(flat.pixel(rim), 204, 51, 51, kByteRounding));
}

struct VectorCase {
  const char* name;
  bool viewShows;
  bool bodyShows;
};

class RenderingVectors : public ViewFixture, public ::testing::WithParamInterface<VectorCase> {};

// A body of radius 1 at the origin moving at 150 units along +x: its
// velocity vector runs from the centre to the right.
TEST_P(RenderingVectors, VelocityIsDrawnOnlyWhenViewAndBodyShowVectors) {
  const VectorCase c = GetParam();
  Body* body = addBody(Vector(), 1.0, 1.0f, 0.0f, 0.0f);
  body->velocity = Vector::of(150, 0, 0);
  body->showVectors = c.bodyShows;
  OrrenvaleGL& gl = openView(300, 300);
  gl.view()->gridlineEnabled = false;
  gl.view()->showVectors = c.viewShows;
  const QImage image = gl.captureView();
  const int right = countPixels(image.copy(160, 145, 140, 10), [](QRgb p) { return !isBlack(p); });
  if (c.viewShows && c.bodyShows) {
    EXPECT_GT(right, 20);
  } else {
    EXPECT_EQ(right, 0);
  }
}

INSTANTIATE_TEST_SUITE_P(Switches, RenderingVectors,
                         ::testing::Values(VectorCase{"Both", true, true},
                                           VectorCase{"ViewOff", false, true},
                                           VectorCase{"BodyOff", true, false}),
                         [](const auto& p) { return std::string(p.param.name); });

TEST_F(Rendering, TrackedBodyIsDrawnAtTheCentre) {
  Body* body = addBody(Vector::of(500, 300, 0), 10.0, 1.0f, 0.0f, 0.0f);
  body->velocity = Vector::of(0, 0, -3);
  OrrenvaleGL& gl = openView(300, 200);
  gl.view()->trackBody = true;
  gl.view()->trackBodyID = body->id;
  const auto c = centroid(gl.captureView(), pureRed());
  ASSERT_TRUE(c.has_value());
  // Centroid of a symmetric disc drawn on whole pixels: within a pixel.
  EXPECT_NEAR(c->x(), 149.5, 1.0);
  EXPECT_NEAR(c->y(), 99.5, 1.0);
}

struct ShapeCase {
  int w;
  int h;
  double wide;  // expected first diagonal element
  double tall;  // expected second
};

class RenderingProjection : public ViewFixture, public ::testing::WithParamInterface<ShapeCase> {};

// The narrower side spans 45 degrees: its scale is cot(22.5 deg) = 1 + sqrt 2,
// the wider side's is that divided by the aspect ratio 2.
TEST_P(RenderingProjection, NarrowerSideSpansFortyFiveDegrees) {
  const ShapeCase c = GetParam();
  OrrenvaleGL& gl = openView(c.w, c.h);
  gl.captureView();
  gl.makeCurrent();
  GLdouble m[16];
  glGetDoublev(GL_PROJECTION_MATRIX, m);
  gl.doneCurrent();
  // OpenGL keeps matrices in single precision: relative 6e-8, and pi is
  // taken as 3.14159265 (relative 1e-9 in the tangent).
  constexpr double kFloatMatrix = 1e-6;
  EXPECT_NEAR(m[0], c.wide, kFloatMatrix);
  EXPECT_NEAR(m[5], c.tall, kFloatMatrix);
  EXPECT_NEAR(m[10], -1.0, kFloatMatrix);
  EXPECT_NEAR(m[11], -1.0, kFloatMatrix);
  EXPECT_NEAR(m[14], -2.0, kFloatMatrix);
}

const double kCot = 1.0 + std::sqrt(2.0);

INSTANTIATE_TEST_SUITE_P(Shapes, RenderingProjection,
                         ::testing::Values(ShapeCase{400, 200, kCot / 2, kCot},
                                           ShapeCase{200, 400, kCot, kCot / 2},
                                           ShapeCase{300, 300, kCot, kCot}),
                         caseNames({"Wide", "Tall", "Square"}));

// A lattice too dense to draw is skipped: the frame finishes at once and
// shows no grid, only the marker (seen from close by). Black bodies span the
// box without showing.
TEST_F(Rendering, FrameWithATooDenseLatticeFinishesWithoutIt) {
  addBody(Vector(-1000.0), 1.0, 0.0f, 0.0f, 0.0f);
  addBody(Vector(1000.0), 1.0, 0.0f, 0.0f, 0.0f);
  OrrenvaleGL& gl = openView(300, 200);
  gl.view()->gridlineSpacing = 1.0;
  gl.view()->cameraPosition = Vector::of(0, 0, 40);
  const QImage image = gl.captureView();
  EXPECT_EQ(countPixels(image, isGrid), 0);
  EXPECT_GT(countPixels(image, markerRed), 0);
}

}  // namespace
