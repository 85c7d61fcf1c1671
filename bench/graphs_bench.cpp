// Cost of the Graphs palette: redrawing one plot of many samples, one
// refresh of the whole palette (a sample of a 1000-body world and the
// repaint of its plots), and the steps per second of a 1000-body world run
// by the application's controller, with the palette shown and refreshing or
// hidden; the controller is the palette's host, as in the application. Needs a display (xvfb-run -a
// build/bench/graphs_bench).
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QTest>
#include <cmath>
#include <ctime>
#include <random>

#include "app/controller.h"
#include "app/qt_panels.h"
#include "engine/world.h"
#include "palettes/graphs_window_controller.h"
#include "palettes/plot_widget.h"

namespace {

// Processor time of the whole process so far.
double processorSeconds() {
  timespec t{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
  return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9;
}

// A disc of bodies on a golden-angle spiral, none touching, G = 1.
void addSpiral(World& world, int bodies) {
  world.gravitationalConstant = 1.0;
  for (int i = 0; i < bodies; ++i) {
    Body* b = world.createBody();
    const double a = 2.399963 * i;
    const double r = 10.0 + std::sqrt(static_cast<double>(i)) * 8.0;
    b->position = Vector::of(r * std::cos(a), r * std::sin(a), 0.0);
    b->velocity = Vector::of(-std::sin(a), std::cos(a), 0.0) * 0.2;
    b->radius = 0.5;
    b->mass = 1e-3;
  }
}

// Samples with the look of a long run: an energy wandering in its tenth
// digit, errors growing with noise over several decades.
GraphHistory syntheticHistory(std::size_t samples) {
  GraphHistory history(samples);
  std::mt19937_64 rng(12);
  std::normal_distribution<double> noise;
  double walk = 0.0;
  for (std::size_t i = 0; i < samples; ++i) {
    walk += noise(rng);
    GraphSample s;
    s.time = 0.2 * static_cast<double>(i);
    s[GraphSeries::Energy] = -1.2874 + 1e-11 * walk;
    s[GraphSeries::EnergyError] = 1e-14 * std::sqrt(static_cast<double>(i)) * std::fabs(walk);
    s[GraphSeries::AngularMomentumError] = 1e-15 * static_cast<double>(i % 977 + 1);
    history.append(s);
  }
  return history;
}

// One plot of as many samples as the argument says, the size it has in the
// palette, drawn into an image as its paint event draws it on screen.
void BM_PlotRedraw(benchmark::State& state) {
  const GraphHistory history = syntheticHistory(static_cast<std::size_t>(state.range(0)));
  PlotContent content;
  content.logarithmic = state.range(1) != 0;
  content.title = QStringLiteral("Plot");
  if (content.logarithmic) {
    content.lines = {{GraphSeries::EnergyError, QStringLiteral("energy"), Qt::red},
                     {GraphSeries::AngularMomentumError, QStringLiteral("ang. mom."), Qt::blue}};
  } else {
    content.lines = {{GraphSeries::Energy, QStringLiteral("E"), Qt::red}};
  }
  PlotWidget plot(history, content);
  plot.resize(500, 110);
  QImage image(plot.size(), QImage::Format_ARGB32_Premultiplied);
  for (auto _ : state) {
    plot.render(&image);
    benchmark::DoNotOptimize(image.bits());
  }
}
BENCHMARK(BM_PlotRedraw)
    ->ArgNames({"samples", "log"})
    ->Args({100000, 0})
    ->Args({100000, 1})
    ->Unit(benchmark::kMillisecond);

// One refresh of the shown palette with a full history (as after an hour of
// running): a sample of a world of the given size, then the repaint of
// every shown plot. The palette refreshes five times a second, so the share
// of the main thread it takes, and so of the steps per second, is five
// times this time per second.
void BM_PaletteRefresh(benchmark::State& state) {
  QtPanels panels;
  Controller controller(&panels);
  World& world = controller.world();
  GraphsWindowController palette(controller.host());
  // Fill the history cheaply with a two-body world, then grow the world.
  addSpiral(world, 2);
  palette.takeBaseline();
  for (std::size_t i = 1; i < GraphHistory::kDefaultCapacity; ++i) {
    world.elapsedTime += 1.0;
    palette.getValues();
  }
  addSpiral(world, static_cast<int>(state.range(0)) - 2);
  palette.window()->show();
  if (!QTest::qWaitForWindowExposed(palette.window())) {
    state.SkipWithError("no display");
    return;
  }
  for (auto _ : state) {
    state.PauseTiming();
    world.elapsedTime += 1.0;
    state.ResumeTiming();
    palette.getValues();
    palette.window()->repaint();
  }
  state.counters["samples"] = static_cast<double>(palette.history().size());
}
BENCHMARK(BM_PaletteRefresh)->Arg(1000)->Unit(benchmark::kMillisecond);

// Steps per second of a world run by the application's clock as fast as it
// goes, for a few seconds of wall-clock time, with the palette hidden (0) or
// shown and refreshing (1). Run it with repetitions, and also with
// ORRENVALE_THREADS=1, so that the steps and the palette share one thread as
// on a one-core machine.
void BM_SteppingWithGraphs(benchmark::State& state) {
  QtPanels panels;
  Controller controller(&panels);
  World& world = controller.world();
  addSpiral(world, static_cast<int>(state.range(0)));
  GraphsWindowController palette(controller.host());
  const bool shown = state.range(1) != 0;
  if (shown) {
    palette.becomeVisible();
    palette.window()->show();
    if (!QTest::qWaitForWindowExposed(palette.window())) {
      state.SkipWithError("no display");
      return;
    }
  }
  for (auto _ : state) {
    const double start = world.elapsedTime;
    QElapsedTimer wall;
    wall.start();
    const double cpuStart = processorSeconds();
    controller.toggleSim();
    QTest::qWait(5000);
    controller.toggleSim();
    const double steps = (world.elapsedTime - start) / world.timeStep;
    state.counters["steps/s"] = steps / (wall.nsecsElapsed() * 1e-9);
    // On a shared machine the processor time the process got is the fairer
    // base: the palette's share shows as fewer steps per processor second.
    state.counters["steps/cpu-s"] = steps / (processorSeconds() - cpuStart);
  }
  state.counters["samples"] = static_cast<double>(palette.history().size());
}
BENCHMARK(BM_SteppingWithGraphs)
    ->ArgNames({"bodies", "shown"})
    ->Args({1000, 0})
    ->Args({1000, 1})
    ->Iterations(1)
    ->Unit(benchmark::kSecond);

}  // namespace

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
