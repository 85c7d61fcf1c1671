#include <QtTest/QTest>
#include <algorithm>
#include <cmath>

#include "tests/engine/test_support.h"
#include "view_test_support.h"

namespace {

// A sun, an earth and a moon, G = 1: the earth (mass 0.01) circles the sun
// at 10, the moon circles the earth at 0.5, a third of the earth's Hill
// radius (10 * (0.01 / 3)^(1/3) = 1.49), where its orbit stays nearly
// circular. 1000 steps of 0.05 are a quarter of the earth's year (197.6)
// and more than two of the moon's months (22.2).
class RelativeTraces : public ViewFixture {
 protected:
  void SetUp() override {
    ViewFixture::SetUp();
    World& w = world();
    w.gravitationalConstant = 1.0;
    w.timeStep = 0.05;
    addBody(Vector(), 0.5, 1.0f, 1.0f, 0.0f);
    earth = addBody(Vector::of(10, 0, 0), 0.3, 0.0f, 1.0f, 0.0f);
    earth->mass = 0.01;
    earth->velocity = Vector::of(0, std::sqrt(1.01 / 10.0), 0);
    Body* moon = addBody(Vector::of(10.5, 0, 0), 0.01, 0.0f, 0.0f, 1.0f);
    moon->mass = 1e-6;
    moon->velocity = earth->velocity + Vector::of(0, std::sqrt(0.01 / 0.5), 0);
    moon->traceEnable = true;
  }

  // Trace points are drawn unlit in the moon's full colour; the lit sphere
  // and its smoothed edges are darker.
  static bool moonTrace(QRgb p) { return qBlue(p) == 255 && qRed(p) == 0 && qGreen(p) == 0; }

  // Distances of the moon's trace pixels from the earth's disc, in pixels.
  static std::pair<double, double> traceDistances(const QImage& image) {
    const std::optional<QPointF> centre = centroid(image, pureGreen());
    EXPECT_TRUE(centre.has_value());
    double nearest = 1e9;
    double farthest = 0.0;
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < image.width(); ++x) {
        if (centre && moonTrace(image.pixel(x, y))) {
          const double d = std::hypot(x - centre->x(), y - centre->y());
          nearest = std::min(nearest, d);
          farthest = std::max(farthest, d);
        }
      }
    }
    return {nearest, farthest};
  }

  Body* earth = nullptr;
};

TEST_F(RelativeTraces, TheMoonsTraceIsARingAroundTheEarthOnlyRelativeToItAndCanBeHidden) {
  // Looks down on the orbit from 28 units above the sun: 400 pixels span
  // 2 * 28 * tan(22.5 degrees) = 23.2 units, 17.2 pixels a unit.
  OrrenvaleGL& gl = openView(400, 400);
  gl.view()->cameraPosition = Vector::of(0, 0, 28);
  gl.view()->gridlineEnabled = false;
  gl.view()->trackBodyID = earth->id;
  // The first frame asks the world to keep the earth's place with the trace
  // points.
  gl.captureView();
  takeSteps(world(), 1000);

  gl.view()->traceReference = TraceReference::TrackedBody;
  const QImage relative = gl.captureView();
  const auto [nearest, farthest] = traceDistances(relative);
  // The moon keeps between 0.47 and 0.51 from the earth (8.1 to 8.8
  // pixels); a pixel of rounding on either side, and as much again for the
  // centre of the earth's disc.
  EXPECT_GT(nearest, 6.0);
  EXPECT_LT(farthest, 11.0);
  EXPECT_GT(countPixels(relative, moonTrace), 30);

  // In the world the trace follows the earth's quarter orbit back to its
  // start, 14 units (240 pixels) away.
  gl.view()->traceReference = TraceReference::World;
  EXPECT_GT(traceDistances(gl.captureView()).second, 200.0);
  gl.view()->showTraceLines = false;
  EXPECT_EQ(countPixels(gl.captureView(), moonTrace), 0);
}

}  // namespace
