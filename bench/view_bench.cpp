// Frame times of a view under the OpenGL of the machine (Mesa llvmpipe under
// Xvfb on the build machines). Run under a display:
//   xvfb-run -a -s "-screen 0 1280x1024x24" build/bench/view_bench
#include <GL/gl.h>
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QTimer>
#include <QtTest/QTest>
#include <algorithm>
#include <cmath>
#include <ctime>
#include <random>

#include "engine/position_point.h"
#include "engine/world.h"
#include "view/orrenvale_gl.h"
#include "view/path_predictor.h"
#include "view/surface_format.h"
#include "view/view_host.h"

namespace {

class BenchHost : public ViewHost {
 public:
  World& world() override { return world_; }
  int panType() const override { return kPanTypeXY; }
  bool running() const override { return false; }
  bool editing() const override { return true; }
  const PredictedPaths* predictedPaths(double horizon) override {
    return predictor.paths(world_, horizon);
  }
  World world_;
  PathPredictor predictor;
};

BenchHost* gHost = nullptr;

constexpr int kTracePoints = 20000;

// Bodies scattered through a ball of radius 400 (a grid of 11 lines per
// axis, 363 lines), each with velocity and acceleration vectors, and the
// trace points spread over orbits through the same ball.
void buildWorld(World& world, int bodies) {
  world.reset();
  world.tracePoints->clear();
  std::mt19937 random(7);
  std::uniform_real_distribution<double> unit(-1.0, 1.0);
  for (int i = 0; i < bodies; ++i) {
    Body* b = world.createBody();
    b->position = Vector::of(400 * unit(random), 400 * unit(random), 400 * unit(random));
    b->velocity = Vector::of(30 * unit(random), 30 * unit(random), 30 * unit(random));
    b->acceleration = -0.05 * b->position;
    b->radius = 5 + 5 * std::fabs(unit(random));
    for (float& c : b->color) {
      c = static_cast<float>(0.5 + 0.5 * std::fabs(unit(random)));
    }
  }
  for (int i = 0; i < kTracePoints; ++i) {
    auto* p = new PositionPoint;
    const double a = i * 0.01;
    const double r = 100.0 + (i % 20) * 15.0;
    p->x = r * std::cos(a);
    p->y = r * std::sin(a);
    p->z = (i % 20) * 10.0;
    p->color[0] = p->color[1] = p->color[2] = 0.8f;
    world.tracePoints->append(new ListNode(p));
  }
}

// Reports frames per second of wall time and the CPU time of all threads per
// frame: llvmpipe rasterises on worker threads, so on a busy machine the
// wall time depends on what else runs, and the CPU time shows the work.
class FrameCounters {
 public:
  FrameCounters() : start_(std::clock()) {}
  void report(benchmark::State& state) const {
    const double frames = static_cast<double>(state.iterations());
    const double cpu = static_cast<double>(std::clock() - start_) / CLOCKS_PER_SEC;
    state.counters["fps"] = benchmark::Counter(frames, benchmark::Counter::kIsRate);
    state.counters["all_threads_cpu_ms"] = 1000.0 * cpu / frames;
  }

 private:
  std::clock_t start_;
};

// An 800 x 600 view window on screen, looking at the whole ball.
struct Window {
  Window() {
    gl.resize(800, 600);
    gl.view()->cameraPosition = Vector::of(0, 0, 1400);
    gl.show();
    if (!QTest::qWaitForWindowExposed(&gl)) {
      std::abort();
    }
    gl.redrawTimer()->stop();
  }
  OrrenvaleGL gl{*gHost};
};

// The frame itself: camera, clear and render into the view's framebuffer,
// waited for with glFinish.
void drawFrames(benchmark::State& state, OrrenvaleGL& gl) {
  const FrameCounters counters;
  for (auto _ : state) {
    gl.makeCurrent();
    gl.drawRect();
    glFinish();
  }
  counters.report(state);
}

void BM_DrawFrame(benchmark::State& state) {
  buildWorld(gHost->world_, static_cast<int>(state.range(0)));
  Window w;
  drawFrames(state, w.gl);
}
BENCHMARK(BM_DrawFrame)->Arg(10)->Arg(300)->Arg(1000)->Unit(benchmark::kMillisecond)->UseRealTime();

// What each tick of the redraw timer costs: the frame requested as the timer
// requests it, drawn, and shown in the window by Qt.
void BM_ShowFrame(benchmark::State& state) {
  buildWorld(gHost->world_, static_cast<int>(state.range(0)));
  Window w;
  bool shown = false;
  QObject::connect(&w.gl, &QOpenGLWidget::frameSwapped, [&shown] { shown = true; });
  const FrameCounters counters;
  for (auto _ : state) {
    shown = false;
    w.gl.update();
    while (!shown) {
      QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
  }
  counters.report(state);
}
BENCHMARK(BM_ShowFrame)->Arg(10)->Arg(300)->Arg(1000)->Unit(benchmark::kMillisecond)->UseRealTime();

// A click: the scene drawn again in selection mode.
void BM_Pick(benchmark::State& state) {
  buildWorld(gHost->world_, static_cast<int>(state.range(0)));
  Window w;
  w.gl.captureView();
  const FrameCounters counters;
  for (auto _ : state) {
    benchmark::DoNotOptimize(w.gl.pick(400, 300));
  }
  counters.report(state);
}
BENCHMARK(BM_Pick)->Arg(10)->Arg(300)->Arg(1000)->Unit(benchmark::kMillisecond)->UseRealTime();

// The densest lattice still drawn: 31 values per axis, 2,883 lines, seen
// whole from outside (argument 6000) and from its centre (argument 1), where
// many lines cross the whole window.
void BM_LargestGrid(benchmark::State& state) {
  World& world = gHost->world_;
  world.reset();
  world.tracePoints->clear();
  world.createBody()->position = Vector(-1400.0);
  world.createBody()->position = Vector(1400.0);
  Window w;
  w.gl.view()->gridlineSpacing = 100.0;
  w.gl.view()->cameraPosition = Vector::of(0, 0, static_cast<double>(state.range(0)));
  drawFrames(state, w.gl);
}
BENCHMARK(BM_LargestGrid)->Arg(6000)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();

double threadCpuMs() {
  timespec t{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
  return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_nsec) * 1e-6;
}

// The event loop with 300 bodies in a view window of the default size, on
// its redraw timer: without predicted paths (argument 0), with them
// (argument 1), and with them and an edit every 20 ms, each one restarting
// the prediction of 1000 steps (argument 2), as a drag does. Reports the
// longest gap between two turns of the event loop, measured by a 10 ms
// timer's lateness, the frames shown and the worker's steps per second.
void BM_PredictedPaths(benchmark::State& state) {
  World& world = gHost->world_;
  buildWorld(world, 300);
  world.tracePoints->clear();
  world.gravitationalConstant = 1.0;
  const bool paths = state.range(0) > 0;
  const bool editing = state.range(0) > 1;
  OrrenvaleGL gl(*gHost);
  gl.resize(480, 400);
  gl.view()->cameraPosition = Vector::of(0, 0, 1400);
  gl.view()->showPredictedPaths = paths;
  gl.view()->predictionTime = 1000 * world.timeStep;
  gl.show();
  if (!QTest::qWaitForWindowExposed(&gl)) {
    std::abort();
  }
  gHost->predictor.setEnabled(true);
  int frames = 0;
  QObject::connect(&gl, &QOpenGLWidget::frameSwapped, [&frames] { ++frames; });
  QTimer edit;
  Body* nudged = static_cast<Body*>(world.bodies->head()->item());
  QObject::connect(&edit, &QTimer::timeout, [nudged] { nudged->velocity.x += 0.01; });
  // Between two turns: the wall-clock time, and the main thread's own
  // processor time, which other processes on a busy machine do not inflate.
  QElapsedTimer sinceProbe;
  qint64 worstGapMs = 0;
  double lastCpuMs = 0.0;
  double worstCpuMs = 0.0;
  QTimer probe;
  probe.setInterval(10);
  QObject::connect(&probe, &QTimer::timeout, [&] {
    worstGapMs = std::max(worstGapMs, sinceProbe.restart());
    const double cpu = threadCpuMs();
    worstCpuMs = std::max(worstCpuMs, cpu - lastCpuMs);
    lastCpuMs = cpu;
  });
  for (auto _ : state) {
    // Settle first: the first frames compile the sphere and fill the paths.
    QTest::qWait(1000);
    frames = 0;
    const int64_t steps = gHost->predictor.stepsComputed();
    QElapsedTimer clock;
    clock.start();
    sinceProbe.start();
    worstGapMs = 0;
    lastCpuMs = threadCpuMs();
    worstCpuMs = 0.0;
    probe.start();
    if (editing) {
      edit.start(20);
    }
    QTest::qWait(5000);
    probe.stop();
    edit.stop();
    const double seconds = static_cast<double>(clock.nsecsElapsed()) * 1e-9;
    state.counters["longest event-loop gap ms"] = static_cast<double>(worstGapMs);
    state.counters["longest main-thread work ms"] = worstCpuMs;
    state.counters["frames/s"] = frames / seconds;
    state.counters["predicted steps/s"] =
        static_cast<double>(gHost->predictor.stepsComputed() - steps) / seconds;
  }
  gHost->predictor.setEnabled(false);
}
BENCHMARK(BM_PredictedPaths)
    ->ArgName("paths")
    ->Arg(0)
    ->Arg(1)
    ->Arg(2)
    ->Iterations(1)
    ->Unit(benchmark::kSecond);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  setDefaultSurfaceFormat();
  QApplication app(argc, argv);
  BenchHost host;
  gHost = &host;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
