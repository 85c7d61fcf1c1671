// Pace of the running application: world steps and frames per second of the
// real controller, with its timers and view windows, for a few seconds of
// wall-clock time each. Needs a display (xvfb-run -a build/bench/app_bench).
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QTest>
#include <cmath>
#include <memory>

#include "app/controller.h"
#include "app/orrenvale_gl_window_controller.h"
#include "app/qt_panels.h"
#include "engine/world.h"
#include "view/orrenvale_gl.h"
#include "view/surface_format.h"

namespace {

// Arguments: bodies, milliseconds per update, view windows.
void BM_RunningApplication(benchmark::State& state) {
  const int bodies = static_cast<int>(state.range(0));
  const float speed = static_cast<float>(state.range(1));
  const int windows = static_cast<int>(state.range(2));
  QtPanels panels;
  setPanels(&panels);
  auto controller = std::make_unique<Controller>();
  controller->applicationDidFinishLaunching();
  for (int i = 1; i < windows; ++i)
    controller->newView(nullptr);
  World& world = controller->world();
  world.gravitationalConstant = 1.0;
  for (int i = 0; i < bodies; ++i) {
    Body* b = world.createBody();
    const double a = 2.399963 * i;  // golden-angle spiral: no pair touches
    const double r = 10.0 + std::sqrt(static_cast<double>(i)) * 8.0;
    b->position = Vector::of(r * std::cos(a), r * std::sin(a), 0.0);
    b->velocity = Vector::of(-std::sin(a), std::cos(a), 0.0) * 0.2;
    b->radius = 0.5;
    b->mass = 1e-3;
  }
  int frames = 0;
  for (OrrenvaleGLWindowController* w : controller->viewWindows()) {
    QObject::connect(w->CGLview(), &QOpenGLWidget::frameSwapped, [&frames] { ++frames; });
  }
  controller->edit(nullptr);
  controller->setWorldSpeed(speed);
  double seconds = 0;
  for (auto _ : state) {
    const double start = world.elapsedTime;
    frames = 0;
    controller->toggleSim(nullptr);
    QElapsedTimer clock;
    clock.start();
    QTest::qWait(3000);
    controller->toggleSim(nullptr);
    seconds = clock.nsecsElapsed() * 1e-9;
    state.counters["steps/s"] = (world.elapsedTime - start) / world.timeStep / seconds;
    state.counters["frames/s per window"] = frames / seconds / windows;
  }
  controller.reset();
  setPanels(nullptr);
}
BENCHMARK(BM_RunningApplication)
    ->ArgNames({"bodies", "ms", "windows"})
    ->Args({3, 0, 2})
    ->Args({3, 20, 2})
    ->Args({300, 0, 1})
    ->Args({1000, 0, 1})
    ->Iterations(1)
    ->Unit(benchmark::kSecond);

}  // namespace

int main(int argc, char** argv) {
  setDefaultSurfaceFormat();
  QApplication app(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
