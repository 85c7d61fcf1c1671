#include <QtTest/QTest>

#include "tests/engine/test_support.h"
#include "view_test_support.h"

namespace {

// Waits for the prediction under way to reach its end; a dropped or
// restarted prediction would show as a mismatch in the caller's checks.
const PredictedPaths& completed(PathPredictor& predictor, const World& world, double horizon) {
  const PredictedPaths* paths = predictor.paths(world, horizon);
  EXPECT_TRUE(QTest::qWaitFor([&] { return paths->complete; }, 60000));
  return *paths;
}

// Steps the world through every sample and compares each body's position,
// bit for bit, with its predicted point; returns the samples checked.
std::size_t expectTheRunFollows(World& world, const PredictedPaths& p) {
  std::size_t checked = 0;
  int64_t step = 0;
  for (std::size_t k = 0; k < p.steps.size(); ++k) {
    for (; step < p.steps[k]; ++step)
      world.step();
    EXPECT_EQ(world.elapsedTime, p.times[k]);
    std::size_t present = 0;
    for (const PredictedPaths::Path& path : p.paths) {
      const Body* body = world.findBodyById(path.id);
      EXPECT_EQ(body != nullptr, k < path.points.size()) << path.id << " at " << k;
      if (body != nullptr && k < path.points.size()) {
        EXPECT_TRUE(sameBits(body->position, path.points[k])) << path.id << " at " << k;
        ++present;
      }
    }
    EXPECT_EQ(present, static_cast<std::size_t>(world.bodies->count()));
    ++checked;
  }
  return checked;
}

struct RunCase {
  const char* name;
  int bodies;
  double halfSide;
  bool adaptive;
};

class Prediction : public ViewFixture, public ::testing::WithParamInterface<RunCase> {};

TEST_P(Prediction, IsExactlyWhereTheRunGoes) {
  const RunCase c = GetParam();
  addRandomCluster(world(), c.bodies, c.halfSide, 7);
  world().timeStep = 0.05;
  world().adaptive = c.adaptive;
  host.predictor.setEnabled(true);
  const PredictedPaths& p = completed(host.predictor, world(), 3.0);
  // 3.0 / 0.05 steps, with the start.
  EXPECT_EQ(p.steps.back(), 60);
  const int before = world().bodies->count();
  EXPECT_EQ(expectTheRunFollows(world(), p), p.steps.size());
  if (c.halfSide < 20) {
    EXPECT_LT(world().bodies->count(), before) << "the cluster was meant to merge";
  }
}

INSTANTIATE_TEST_SUITE_P(Worlds, Prediction,
                         ::testing::Values(RunCase{"Sparse", 40, 200.0, false},
                                           RunCase{"Merging", 30, 8.0, false},
                                           RunCase{"Adaptive", 6, 30.0, true}),
                         [](const auto& p) { return std::string(p.param.name); });

using PathPrediction = ViewFixture;

// An edit while the worker is under way starts again from the edited world;
// nothing of the earlier prediction reaches the new one.
TEST_F(PathPrediction, AnEditRestartsThePredictionAndDropsTheStaleOne) {
  addRandomCluster(world(), 100, 300.0, 11);
  world().timeStep = 0.05;
  host.predictor.setEnabled(true);
  // 20000 steps: far more than the worker takes before the edit.
  const PredictedPaths* first = host.predictor.paths(world(), 1000.0);
  ASSERT_TRUE(QTest::qWaitFor([&] { return first->steps.size() > 1; }, 60000));
  ASSERT_FALSE(first->complete);
  static_cast<Body*>(world().bodies->head()->item())->velocity.x += 1.0;
  EXPECT_EQ(host.predictor.paths(world(), 5.0)->steps.size(), 0u);
  const PredictedPaths& p = completed(host.predictor, world(), 5.0);
  EXPECT_EQ(p.steps.back(), 100);
  expectTheRunFollows(world(), p);
}

// The prediction runs only while enabled (in design mode): while disabled,
// views that ask for paths get none and the worker takes no step.
TEST_F(PathPrediction, NothingIsComputedWhileDisabled) {
  addRandomCluster(world(), 50, 100.0, 3);
  OrrenvaleGL& gl = openView(200, 200);
  gl.view()->showPredictedPaths = true;
  int frames = 0;
  QObject::connect(&gl, &QOpenGLWidget::frameSwapped, [&frames] { ++frames; });
  const auto waitFrames = [&frames](int n) {
    const int until = frames + n;
    return QTest::qWaitFor([&] { return frames >= until; });
  };
  ASSERT_TRUE(waitFrames(3));
  EXPECT_EQ(host.predictor.stepsComputed(), 0);
  host.predictor.setEnabled(true);
  gl.view()->predictionTime = 1e9;
  ASSERT_TRUE(QTest::qWaitFor([&] { return host.predictor.stepsComputed() > 0; }, 60000));
  host.predictor.setEnabled(false);
  // The worker may finish the step it was in when disabled.
  ASSERT_TRUE(waitFrames(3));
  const int64_t stopped = host.predictor.stepsComputed();
  ASSERT_TRUE(waitFrames(5));
  EXPECT_EQ(host.predictor.stepsComputed(), stopped);
  EXPECT_EQ(host.predictor.paths(world(), 1.0), nullptr);
}

// A planet on a circular orbit about a heavy sun at the origin: its path for
// one period is a faint ring of its colour, on the far side of the orbit too.
TEST_F(PathPrediction, PathsAreDrawnInTheBodysColour) {
  addBody(Vector(), 5.0, 0.5f, 0.5f, 0.5f)->mass = 1000.0;
  Body* planet = addBody(Vector::of(100, 0, 0), 5.0, 0.0f, 1.0f, 0.0f);
  world().gravitationalConstant = 1.0;
  planet->mass = 1e-6;
  planet->velocity = Vector::of(0, std::sqrt(1000.0 / 100.0), 0);
  world().timeStep = 0.5;
  OrrenvaleGL& gl = openView(300, 300);
  View& v = *gl.view();
  v.gridlineEnabled = false;
  v.showVectors = false;
  const auto leftHalfGreen = [&] {
    return countPixels(gl.captureView().copy(0, 0, 150, 300), pureGreen());
  };
  v.showPredictedPaths = true;
  v.predictionTime = 2 * 3.14159265 * 100.0 / std::sqrt(10.0);
  host.predictor.setEnabled(true);
  completed(host.predictor, world(), v.predictionTime);
  EXPECT_GT(leftHalfGreen(), 100);
  v.showPredictedPaths = false;
  EXPECT_EQ(leftHalfGreen(), 0);
}

}  // namespace
