#include <QAction>
#include <QFile>
#include <QPushButton>
#include <QTemporaryDir>
#include <algorithm>
#include <cmath>

#include "palette_test_support.h"
#include "palettes/graphs_window_controller.h"
#include "palettes/plot_widget.h"

namespace {

class GraphsPalette : public PaletteTest<GraphsWindowController> {
 protected:
  void SetUp() override { giveView(); }

  // The three-body figure eight of Chenciner and Montgomery (G = 1, m = 1).
  void setUpFigureEight(double timeStep) {
    World& w = host.w;
    w.gravitationalConstant = 1.0;
    w.timeStep = timeStep;
    const Vector x1 = Vector::of(0.97000436, -0.24308753, 0.0);
    const Vector v3 = Vector::of(-0.93240737, -0.86473146, 0.0);
    for (const auto& [position, velocity] :
         {std::pair{x1, -0.5 * v3}, std::pair{-1.0 * x1, -0.5 * v3}, std::pair{Vector(), v3}}) {
      Body* b = w.createBody();
      b->position = position;
      b->velocity = velocity;
      b->radius = 0.01;
    }
  }

  void run(double time, int every) {
    const auto steps = static_cast<int>(std::lround(time / host.w.timeStep));
    for (int i = 1; i <= steps; ++i) {
      host.w.step();
      if (i % every == 0)
        palette.getValues();
    }
  }

  double largest(GraphSeries s) const {
    const std::vector<double>& v = palette.history().values(s);
    return *std::max_element(v.begin(), v.end());
  }
};

// The figure eight's largest energy error over one period, as the palette
// plots it, with the time step halved: a fourth-order method's error falls
// 2^4 = 16 fold (15.6 here); the range allows for the error's own wobble
// along the orbit, which the samples catch at different phases.
TEST_F(GraphsPalette, FigureEightEnergyErrorFallsSixteenfoldWhenTheStepHalves) {
  double errors[2] = {};
  for (int k = 0; k < 2; ++k) {
    host.w.reset();
    setUpFigureEight(k == 0 ? 0.004 : 0.002);
    palette.takeBaseline();
    run(6.32591398, k == 0 ? 25 : 50);
    ASSERT_GT(palette.history().size(), 60u);
    errors[k] = largest(GraphSeries::EnergyError);
    EXPECT_TRUE(std::isfinite(errors[k]) && errors[k] > 0.0) << errors[k];
  }
  EXPECT_GT(errors[0] / errors[1], 12.0);
  EXPECT_LT(errors[0] / errors[1], 20.0);
}

// Samples come from the palette's refresh, only once the world has moved
// and never in design mode; a new run (a cleared palette, or a world whose
// time went back after a reload) starts a new history.
TEST_F(GraphsPalette, SamplesOnlyMovedWorldsAndClearsForANewRun) {
  setUpFigureEight(0.01);
  palette.takeBaseline();
  EXPECT_EQ(palette.history().size(), 1u);
  palette.getValues();
  EXPECT_EQ(palette.history().size(), 1u);
  run(0.5, 10);
  EXPECT_EQ(palette.history().size(), 6u);
  EXPECT_EQ(palette.history().values(GraphSeries::EnergyError).front(), 0.0);
  EXPECT_EQ(palette.history().values(GraphSeries::Bodies).back(), 3.0);

  host.isEditing = true;
  palette.clearHistory();
  host.w.step();
  palette.getValues();
  EXPECT_TRUE(palette.history().empty());

  host.isEditing = false;
  palette.getValues();
  run(0.3, 10);
  EXPECT_EQ(palette.history().size(), 4u);
  host.w.elapsedTime = 0.0;
  palette.getValues();
  EXPECT_EQ(palette.history().size(), 1u);
}

// The selected body's distance is measured from the tracked body, or from
// the centre of mass when none is tracked (or it is the selected body).
TEST_F(GraphsPalette, SelectedBodyIsMeasuredFromTheTrackedBodyOrTheCentreOfMass) {
  setUpFigureEight(0.01);
  palette.takeBaseline();
  EXPECT_TRUE(std::isnan(palette.history().values(GraphSeries::Distance).back()));
  const Body* a = host.w.findBodyById(100);
  const Body* c = host.w.findBodyById(102);
  view.selectedBodyID = 100;
  for (const int tracked : {102, 0, 100}) {
    view.trackBodyID = tracked;
    host.w.step();
    palette.getValues();
    const Vector from = tracked == 102 ? c->position : host.w.centerOfMass();
    EXPECT_EQ(palette.history().values(GraphSeries::Distance).back(), (a->position - from).length())
        << tracked;
    EXPECT_EQ(palette.history().values(GraphSeries::Speed).back(), a->velocity.length());
  }
}

TEST_F(GraphsPalette, ExportWritesAHeaderAndOneRowPerSampleOrSaysWhyItCannot) {
  setUpFigureEight(0.01);
  palette.takeBaseline();
  run(0.2, 10);
  QTemporaryDir dir;
  const QString path = dir.filePath(QStringLiteral("run.csv"));
  dialogs.files.push_back(path);
  palette.window()->findChild<QPushButton*>(QStringLiteral("exportData"))->click();
  EXPECT_EQ(dialogs.lastFileSuffix, QStringLiteral("csv"));
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  const QStringList rows = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
  ASSERT_EQ(rows.size(), 5);  // header, three samples, and the final newline
  EXPECT_EQ(rows[0], QStringLiteral("time,energy,energy_error,momentum,angular_momentum,"
                                    "angular_momentum_error,bodies,distance,speed"));
  EXPECT_TRUE(rows[4].isEmpty());
  const QStringList last = rows[3].split(QLatin1Char(','));
  ASSERT_EQ(last.size(), 9);
  // Seventeen digits read back as the very doubles sampled.
  EXPECT_EQ(last[0].toDouble(), palette.history().times().back());
  EXPECT_EQ(last[1].toDouble(), host.w.energy());
  EXPECT_EQ(last[6], QStringLiteral("3"));
  // No body is selected: no distance and no speed.
  EXPECT_TRUE(last[7].isEmpty() && last[8].isEmpty());

  dialogs.files.push_back(dir.filePath(QStringLiteral("missing/run.csv")));
  palette.exportData(nullptr);
  ASSERT_EQ(dialogs.alertMessages.size(), 1u);
  EXPECT_TRUE(dialogs.alertMessages[0].contains(dir.filePath(QStringLiteral("missing/run.csv"))));
  EXPECT_TRUE(dialogs.alertMessages[0].contains(QStringLiteral("No such file or directory")));
}

TEST_F(GraphsPalette, PlotChoiceHidesItsPlot) {
  show();
  auto* choice = palette.window()->findChild<QAction*>(QStringLiteral("energyShown"));
  auto* plot = palette.window()->findChild<PlotWidget*>(QStringLiteral("energyPlot"));
  ASSERT_TRUE(choice != nullptr && plot != nullptr);
  EXPECT_TRUE(plot->isVisible());
  choice->trigger();
  EXPECT_FALSE(plot->isVisible());
}

}  // namespace
