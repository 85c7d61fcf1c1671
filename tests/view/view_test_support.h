#pragma once

#include <gtest/gtest.h>

#include <QImage>
#include <QSize>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/world.h"
#include "view/orrenvale_gl.h"
#include "view/path_predictor.h"
#include "view/view_host.h"

// The application's side of the views, as small as the tests need it.
class TestHost : public ViewHost {
 public:
  World& world() override { return world_; }
  int panType() const override { return panType_; }
  bool running() const override { return false; }
  bool editing() const override { return editing_; }
  void bodyDragged(const BodyDrag& drag) override { drags.push_back(drag); }
  const PredictedPaths* predictedPaths(double horizon) override {
    return predictor.paths(world_, horizon);
  }

  World world_;
  int panType_ = kPanTypeXY;
  bool editing_ = false;
  std::vector<BodyDrag> drags;
  PathPredictor predictor;
};

// A host with a fresh world, and real view windows opened on it.
class ViewFixture : public ::testing::Test {
 protected:
  void TearDown() override { views.clear(); }

  // A top-level view of w x h pixels, on screen.
  OrrenvaleGL& openView(int w, int h);
  Body* addBody(const Vector& position, double radius, float r, float g, float b);
  World& world() { return host.world_; }

  TestHost host;
  std::vector<std::unique_ptr<OrrenvaleGL>> views;
};

// Names a test parametrised over window sizes by its size, as 300x200.
std::string sizeName(const ::testing::TestParamInfo<QSize>& info);

// A pointer move as the window system sends it, with the buttons still held
// during a drag (or none while hovering).
void moveWithButtons(QWidget& w, QPointF to, Qt::MouseButtons buttons,
                     Qt::KeyboardModifiers modifiers = Qt::NoModifier);
// A press, `moves` even pointer moves and a release, the modifiers held
// throughout.
void drag(QWidget& w, Qt::MouseButton button, QPointF from, QPointF to,
          Qt::KeyboardModifiers modifiers = Qt::NoModifier, int moves = 5);

// Pixel classification on captured images.
using PixelTest = std::function<bool(QRgb)>;
// Pixels that are pure in one colour channel: lit spheres of colour (1,0,0),
// (0,1,0) or (0,0,1), which the grey grid and the marker never are.
PixelTest pureRed();
PixelTest pureGreen();
PixelTest pureBlue();
bool isBlack(QRgb p);
int countPixels(const QImage& image, const PixelTest& test);
// Centre of the pixels that pass the test, or nothing when none does.
std::optional<QPointF> centroid(const QImage& image, const PixelTest& test);
// Channels within `tolerance` of the expected 8-bit values.
bool near(QRgb p, int r, int g, int b, int tolerance);
