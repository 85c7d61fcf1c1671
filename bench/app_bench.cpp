// Pace of the running application: world steps and frames per second of the
// real controller, with its timers and view windows, for a few seconds of
// wall-clock time each, with and without the text log; the memory a long
// text log takes; and what recording a movie of a view costs the running
// simulation, beside the encoder's own cost per frame. Needs a display
// (xvfb-run -a build/bench/app_bench).
#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <time.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>
#include <vector>

#include "app/controller.h"
#include "app/movie_encoder.h"
#include "app/movie_recorder.h"
#include "app/orrenvale_gl_window_controller.h"
#include "app/qt_panels.h"
#include "app/view_window_registry.h"
#include "engine/world.h"
#include "palettes/text_output_controller.h"
#include "view/orrenvale_gl.h"
#include "view/surface_format.h"

namespace {

void addSpiral(World& world, int bodies, double radius = 0.5) {
  world.gravitationalConstant = 1.0;
  for (int i = 0; i < bodies; ++i) {
    Body* b = world.createBody();
    const double a = 2.399963 * i;  // golden-angle spiral: no pair touches
    const double r = 10.0 + std::sqrt(static_cast<double>(i)) * 8.0;
    b->position = Vector::of(r * std::cos(a), r * std::sin(a), 0.0);
    b->velocity = Vector::of(-std::sin(a), std::cos(a), 0.0) * 0.2;
    b->radius = radius;
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
    controller->newView();
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
  for (OrrenvaleGLWindowController* w : controller->windows().windows()) {
    QObject::connect(w->CGLview(), &QOpenGLWidget::frameSwapped, [&frames] { ++frames; });
  }
  controller->edit();
  controller->setWorldSpeed(speed);
  double seconds = 0;
  for (auto _ : state) {
    const double start = world.elapsedTime;
    frames = 0;
    controller->toggleSim();
    QElapsedTimer clock;
    clock.start();
    sinceProbe.start();
    worstGapMs = 0;
    probe.start();
    QTest::qWait(3000);
    probe.stop();
    controller->toggleSim();
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
  controller->edit();
  controller->showOutputPaletteFromMenu(nullptr);
  TextOutputController* log = controller->textPaletteController();
  log->clickBegin(nullptr);
  for (auto _ : state) {
    for (int i = 1; i <= steps; ++i) {
      controller->stepSim();
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

// Movies: a view of 640 x 480, bodies large enough to be seen in it, runs
// of 5 seconds.
constexpr QSize kViewSize(640, 480);
constexpr double kVisibleRadius = 2.0;
constexpr int kSeconds = 5;

// Processor time of the whole process (every thread), in seconds.
double processSeconds() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
         static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) * 1e-6;
}

// The application out of design mode with the spiral in one view window of
// kViewSize, once that window has drawn at its size.
std::unique_ptr<Controller> openSpiral(Panels& panels, int bodies) {
  auto controller = std::make_unique<Controller>(&panels);
  controller->applicationDidFinishLaunching();
  addSpiral(controller->world(), bodies, kVisibleRadius);
  controller->edit();
  controller->windows().mainWindow()->setContentSize(kViewSize.width(), kViewSize.height());
  const OrrenvaleGL* view = controller->currentGLView();
  if (!QTest::qWaitFor([&] { return view->size() == kViewSize; })) {
    std::fprintf(stderr, "the view window did not take its size\n");
  }
  QTest::qWait(500);
  return controller;
}

// Processor time of the calling thread, in seconds: a share of the machine
// that other programs on it disturb far less than wall-clock time.
double threadSeconds() {
  timespec t{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
  return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9;
}

struct RunPace {
  double stepsPerSecond = 0.0;
  double framesPerSecond = 0.0;
  double processorSecondsPerSecond = 0.0;
  double mainThreadSecondsPerSecond = 0.0;
};

// Runs the clock as fast as it can (0 ms per update) for kSeconds, with the
// view recorded all the while or not at all.
RunPace runFor(Controller& controller, bool recording, const QString& moviePath) {
  World& world = controller.world();
  std::unique_ptr<MovieRecorder> recorder;
  if (recording) {
    recorder = std::make_unique<MovieRecorder>(
        *controller.currentGLView(),
        MovieSettings{moviePath, 24 * (kSeconds + 5), 24,
                      preferredMovieCodec().value_or(MovieCodec::H264)});
    if (!recorder->start()) {
      std::fprintf(stderr, "%s\n", qUtf8Printable(recorder->errorString()));
      return {};
    }
  }
  const double start = world.elapsedTime;
  const double processorStart = processSeconds();
  const double mainThreadStart = threadSeconds();
  QElapsedTimer clock;
  clock.start();
  controller.toggleSim();
  QTest::qWait(kSeconds * 1000);
  controller.toggleSim();
  const double seconds = static_cast<double>(clock.nsecsElapsed()) * 1e-9;
  RunPace pace;
  pace.stepsPerSecond = (world.elapsedTime - start) / world.timeStep / seconds;
  pace.processorSecondsPerSecond = (processSeconds() - processorStart) / seconds;
  pace.mainThreadSecondsPerSecond = (threadSeconds() - mainThreadStart) / seconds;
  if (recorder != nullptr) {
    pace.framesPerSecond = recorder->framesTaken() / seconds;
  }
  return pace;
}

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

// Argument: bodies. Runs without and with a recording in turn, kRounds
// times, so that the load of a shared machine falls on both alike, and
// reports the medians: steps a second and their ratio, and the processor
// time the program's thread and the whole process take a second, whose
// differences are what the recording costs on the program's thread (reading
// the frames back) and on the others (encoding).
void BM_RecordingCost(benchmark::State& state) {
  constexpr int kRounds = 3;
  QtPanels panels;
  auto controller = openSpiral(panels, static_cast<int>(state.range(0)));
  QTemporaryDir dir;
  for (auto _ : state) {
    std::vector<RunPace> off;
    std::vector<RunPace> on;
    for (int round = 0; round < kRounds; ++round) {
      off.push_back(runFor(*controller, false, {}));
      on.push_back(runFor(*controller, true, dir.filePath("bench.mp4")));
    }
    const auto middle = [](const std::vector<RunPace>& runs, double RunPace::*field) {
      std::vector<double> values;
      for (const RunPace& run : runs) {
        values.push_back(run.*field);
      }
      return median(values);
    };
    state.counters["steps/s"] = middle(off, &RunPace::stepsPerSecond);
    state.counters["steps/s recorded"] = middle(on, &RunPace::stepsPerSecond);
    state.counters["recorded/not"] =
        middle(on, &RunPace::stepsPerSecond) / middle(off, &RunPace::stepsPerSecond);
    state.counters["frames/s recorded"] = middle(on, &RunPace::framesPerSecond);
    state.counters["main thread s/s"] = middle(off, &RunPace::mainThreadSecondsPerSecond);
    state.counters["main thread s/s recorded"] = middle(on, &RunPace::mainThreadSecondsPerSecond);
    state.counters["process s/s"] = middle(off, &RunPace::processorSecondsPerSecond);
    state.counters["process s/s recorded"] = middle(on, &RunPace::processorSecondsPerSecond);
  }
  controller.reset();
}
BENCHMARK(BM_RecordingCost)
    ->ArgNames({"bodies"})
    ->Arg(3)
    ->Arg(300)
    ->Iterations(1)
    ->Unit(benchmark::kSecond);

// What one frame of the spiral costs, drawn and shown, with its pixels read
// back for a recording or not: the difference is the recording's whole cost
// on the program's thread, per frame (the encoding runs on other threads).
// Arguments: bodies, read back (0 or 1).
void BM_DrawFrame(benchmark::State& state) {
  const bool readBack = state.range(1) != 0;
  QtPanels panels;
  auto controller = openSpiral(panels, static_cast<int>(state.range(0)));
  OrrenvaleGL* view = controller->currentGLView();
  // Only this loop draws.
  view->redrawTimer()->stop();
  std::int64_t pixels = 0;
  QMetaObject::Connection tap;
  if (readBack) {
    tap = QObject::connect(view, &OrrenvaleGL::frameDrawn,
                           [&pixels](const QImage& frame) { pixels += frame.width(); });
  }
  int shown = 0;
  QObject::connect(view, &QOpenGLWidget::frameSwapped, [&shown] { ++shown; });
  for (auto _ : state) {
    const int before = shown;
    view->update();
    while (shown == before) {
      QCoreApplication::processEvents();
    }
  }
  QObject::disconnect(tap);
  benchmark::DoNotOptimize(pixels);
  controller.reset();
}
BENCHMARK(BM_DrawFrame)
    ->ArgNames({"bodies", "read back"})
    ->Args({3, 0})
    ->Args({3, 1})
    ->Args({300, 0})
    ->MeasureProcessCPUTime()
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

// The encoder alone, on frames of a 640 x 480 view of the spiral: processor
// time per frame over all threads (x264 runs several), converting and
// encoding included.
void BM_EncodeViewFrames(benchmark::State& state) {
  const auto codec = static_cast<MovieCodec>(state.range(0));
  QtPanels panels;
  auto controller = openSpiral(panels, 300);
  OrrenvaleGL* view = controller->currentGLView();
  std::vector<QImage> frames;
  for (int i = 0; i < 48; ++i) {
    controller->stepSim();
    frames.push_back(view->captureView());
  }
  QTemporaryDir dir;
  double cpu = 0.0;
  std::int64_t encoded = 0;
  for (auto _ : state) {
    MovieEncoder encoder;
    const double cpuStart = processSeconds();
    encoder.open(dir.filePath("bench." + movieSuffix(codec)), kViewSize, 24, codec);
    for (const QImage& frame : frames) {
      encoder.addFrame(frame);
    }
    encoder.finish();
    cpu += processSeconds() - cpuStart;
    encoded += static_cast<std::int64_t>(frames.size());
  }
  state.counters["processor ms/frame"] = 1000.0 * cpu / static_cast<double>(encoded);
  state.SetItemsProcessed(encoded);
  controller.reset();
}
BENCHMARK(BM_EncodeViewFrames)
    ->ArgNames({"vp9"})
    ->Arg(0)
    ->Arg(1)
    ->MinTime(3.0)
    ->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  setDefaultSurfaceFormat();
  QApplication app(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
