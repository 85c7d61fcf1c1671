// Pace of the running application: world steps and frames per second of the
// real controller, with its timers and view windows, for a few seconds of
// wall-clock time each, with and without the text log; and the memory a
// long text log takes. Needs a display (xvfb-run -a build/bench/app_bench).
#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QTest>
#include <QTimer>
#include <algorithm>
#include <cmath>
#include <memory>

#include "app/controller.h"
#include "app/orrenvale_gl_window_controller.h"
#include "app/qt_panels.h"
#include "engine/world.h"
#include "palettes/text_output_controller.h"
#include "view/orrenvale_gl.h"
#include "view/surface_format.h"

namespace {

void addSpiral(World& world, int bodies) {
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
}

// The process's peak resident memory so far, in megabytes.
double peakMegabytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

// Arguments: bodies, milliseconds per update, view windows, text log on.
// Besides the pace it reports the longest gap between two turns of the
// event loop (what a click on Stop may have to wait), measured by a 10 ms
// timer's lateness.
void BM_RunningApplication(benchmark::State& state) {
  const int bodies = static_cast<int>(state.range(0));
  const float speed = static_cast<float>(state.range(1));
  const int windows = static_cast<int>(state.range(2));
  const bool logging = state.range(3) != 0;
  QtPanels panels;
  auto controller = std::make_unique<Controller>(&panels);
  controller->applicationDidFinishLaunching();
  for (int i = 1; i < windows; ++i)
    controller->newView(nullptr);
  World& world = controller->world();
  addSpiral(world, bodies);
  if (logging) {
    controller->showOutputPaletteFromMenu(nullptr);
    controller->textPaletteController()->clickBegin(nullptr);
  }
  QElapsedTimer sinceProbe;
  qint64 worstGapMs = 0;
  QTimer probe;
  probe.setInterval(10);
  QObject::connect(&probe, &QTimer::timeout,
                   [&] { worstGapMs = std::max(worstGapMs, sinceProbe.restart()); });
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
    sinceProbe.start();
    worstGapMs = 0;
    probe.start();
    QTest::qWait(3000);
    probe.stop();
    controller->toggleSim(nullptr);
    seconds = clock.nsecsElapsed() * 1e-9;
    state.counters["steps/s"] = (world.elapsedTime - start) / world.timeStep / seconds;
    state.counters["frames/s per window"] = frames / seconds / windows;
    state.counters["longest event-loop gap ms"] = static_cast<double>(worstGapMs);
  }
  controller.reset();
}
BENCHMARK(BM_RunningApplication)
    ->ArgNames({"bodies", "ms", "windows", "log"})
    ->Args({3, 0, 2, 0})
    ->Args({3, 20, 2, 0})
    ->Args({300, 0, 1, 0})
    ->Args({300, 0, 1, 1})
    ->Args({2, 0, 1, 1})
    ->Args({1000, 0, 1, 0})
    ->Iterations(1)
    ->Unit(benchmark::kSecond);

// A million logged steps of ten bodies through the text palette, as the
// application's clock logs them; the log must stay on disk, not in memory.
void BM_TextLogMemory(benchmark::State& state) {
  const int steps = static_cast<int>(state.range(0));
  QtPanels panels;
  auto controller = std::make_unique<Controller>(&panels);
  controller->applicationDidFinishLaunching();
  addSpiral(controller->world(), 10);
  controller->edit(nullptr);
  controller->showOutputPaletteFromMenu(nullptr);
  TextOutputController* log = controller->textPaletteController();
  log->clickBegin(nullptr);
  for (auto _ : state) {
    for (int i = 1; i <= steps; ++i) {
      controller->stepSim(nullptr);
      if (i % 1000 == 0) {
        QCoreApplication::processEvents();
      }
    }
  }
  state.counters["lines"] = static_cast<double>(log->lineCount());
  state.counters["peak MB"] = peakMegabytes();
  controller.reset();
}
BENCHMARK(BM_TextLogMemory)->Arg(1000000)->Iterations(1)->Unit(benchmark::kSecond);

}  // namespace

int main(int argc, char** argv) {
  setDefaultSurfaceFormat();
  QApplication app(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
