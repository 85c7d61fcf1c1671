#include <gtest/gtest.h>

#include <QMenuBar>

#include "app/design_history.h"
#include "app_test_support.h"
#include "palettes/graphs_window_controller.h"
#include "tests/case_names.h"
#include "view/path_predictor.h"

namespace {

// Designs a world of two bodies and a moved camera, then leaves design mode.
void designAndLeave(Controller& c) {
  c.newBody();
  c.newBody();
  World& w = c.world();
  w.findBodyById(100)->velocity.y = 2.0;
  w.findBodyById(101)->position.x = 50.0;
  w.timeStep = 0.05;
  c.currentView()->cameraPosition.z = 250.0;
  c.edit();
}

TEST_F(AppTest, EnteringDesignModeAgainRestoresTheDesign) {
  designAndLeave(*controller);
  controller->edit();  // back without a run, and out again
  EXPECT_EQ(world().findBodyById(101)->position.x, 50.0);
  controller->edit();
  for (int i = 0; i < 20; ++i)
    controller->stepSim();
  world().timeStep = 0.5;
  EXPECT_NE(world().findBodyById(100)->position.y, 0.0);

  controller->edit();
  EXPECT_TRUE(controller->editing());
  EXPECT_EQ(world().elapsedTime, 0.0);
  EXPECT_EQ(world().timeStep, 0.05);
  ASSERT_EQ(world().bodies->count(), 2);
  EXPECT_EQ(world().findBodyById(100)->position.y, 0.0);
  EXPECT_EQ(world().findBodyById(100)->velocity.y, 2.0);
  EXPECT_EQ(world().findBodyById(101)->position.x, 50.0);
  ASSERT_EQ(viewWindowCount(), 1);
  EXPECT_EQ(mainWindowTitle(), "View 0");
  EXPECT_EQ(controller->currentView()->cameraPosition.z, 250.0);
  EXPECT_EQ(world().nextBodyId, 102);
}

// Revert returns a run to its design outside design mode; Edit Current
// takes the run as the new design.
TEST_F(AppTest, RevertAndEditCurrentEndARun) {
  designAndLeave(*controller);
  controller->toggleSim();
  ASSERT_TRUE(QTest::qWaitFor([&] { return world().elapsedTime > 0; }, 5000));
  controller->revertSim();
  EXPECT_FALSE(controller->running());
  EXPECT_FALSE(controller->editing());
  EXPECT_EQ(world().elapsedTime, 0.0);
  EXPECT_EQ(world().findBodyById(100)->position.y, 0.0);
  EXPECT_TRUE(item("menuSimStep")->isEnabled());

  for (int i = 0; i < 5; ++i)
    controller->stepSim();
  const double y = world().findBodyById(100)->position.y;
  controller->editCurrent();
  EXPECT_TRUE(controller->editing());
  EXPECT_EQ(world().findBodyById(100)->position.y, y);
  controller->edit();
  controller->stepSim();
  controller->edit();
  EXPECT_EQ(world().findBodyById(100)->position.y, y);
}

TEST_F(AppTest, ResetLeavesNoViewWindowAndNewBodyOpensOne) {
  designAndLeave(*controller);
  controller->resetSim();
  flush();
  EXPECT_EQ(viewWindowCount(), 0);
  EXPECT_TRUE(controller->editing());
  EXPECT_EQ(world().bodies->count(), 0);
  EXPECT_TRUE(controller->menus().bodyItems().empty());
  EXPECT_FALSE(item("menuZin")->isEnabled());
  // The design went with the reset: a run and back finds it empty.
  controller->edit();
  controller->edit();
  EXPECT_EQ(world().bodies->count(), 0);

  controller->showBodyPaletteFromMenu(nullptr);  // hide it first
  ASSERT_FALSE(controller->menus().menuBodyInfoPalette->isChecked());
  controller->newBody();
  EXPECT_EQ(viewWindowCount(), 1);
  ASSERT_NE(controller->currentView(), nullptr);
  EXPECT_EQ(controller->currentView()->selectedBodyID, 100);
  EXPECT_TRUE(controller->menus().menuBodyInfoPalette->isChecked());
  EXPECT_TRUE(controller->editing());
  // Still designing: Step stays off even though adding a body stopped the clock.
  EXPECT_FALSE(item("menuSimStep")->isEnabled());
}

TEST_F(AppTest, NewAsksFirstAndCancelKeepsEverything) {
  designAndLeave(*controller);
  panels.confirmAnswer = Panels::Answer::Cancel;
  controller->menuNew();
  EXPECT_EQ(panels.confirmations, 1);
  EXPECT_EQ(world().bodies->count(), 2);
  EXPECT_FALSE(controller->editing());

  // "Save" with a cancelled save panel still goes on to the new world.
  panels.confirmAnswer = Panels::Answer::Save;
  controller->menuNew();
  flush();
  EXPECT_EQ(world().bodies->count(), 0);
  EXPECT_EQ(viewWindowCount(), 1);
  EXPECT_TRUE(controller->editing());
  EXPECT_EQ(mainWindowTitle(), "View 0");
}

TEST_F(AppTest, ResetWithEveryPaletteHiddenShowsTheSimulationPalette) {
  controller->showViewPaletteFromMenu(nullptr);
  controller->showBodyPaletteFromMenu(nullptr);
  controller->showSimulationPaletteFromMenu(nullptr);
  controller->resetSim();
  flush();
  EXPECT_EQ(viewWindowCount(), 0);
  // Its menu bar keeps every command reachable.
  EXPECT_TRUE(controller->menus().menuSimPalette->isChecked());
  EXPECT_TRUE(controller->simulationPaletteController()->window()->isVisible());
}

std::vector<QPoint> viewWindowPositions(const Controller& c) {
  std::vector<QPoint> at;
  for (const OrrenvaleGLWindowController* w : c.windows().windows())
    at.push_back(w->window()->geometry().topLeft());
  return at;
}

// Round trips close and reopen the view windows; each comes back where its
// window was when it closed, not in the cascade of new windows.
TEST_F(AppTest, ViewWindowsReopenWhereTheyWere) {
  controller->newView();
  const std::vector<QPoint> placed = {QPoint(310, 220), QPoint(520, 360)};
  for (std::size_t i = 0; i < placed.size(); ++i) {
    QWidget* window = controller->windows().windows()[i]->window();
    window->setGeometry(QRect(placed[i], window->size()));
  }
  controller->edit();  // leave design mode: the windows stay
  controller->edit();  // enter it again: they close and reopen
  EXPECT_EQ(viewWindowPositions(*controller), placed);

  // Moved during a run, a window comes back where it was at Revert.
  controller->edit();
  QWidget* first = controller->windows().windows()[0]->window();
  first->setGeometry(QRect(QPoint(100, 90), first->size()));
  controller->newView();  // not part of the design: gone after Revert
  controller->revertSim();
  EXPECT_EQ(viewWindowPositions(*controller), (std::vector<QPoint>{QPoint(100, 90), placed[1]}));

  // Edit Current takes the windows as they are.
  controller->editCurrent();
  EXPECT_EQ(viewWindowPositions(*controller), (std::vector<QPoint>{QPoint(100, 90), placed[1]}));
}

// The design's history as the application wires it: an Edit menu in every
// menu bar, recording and prediction in design mode only, the history kept
// across a run and forgotten when the design is replaced.
TEST_F(AppTest, EditMenuUndoesTheDesignAcrossARun) {
  for (QMenuBar* bar : qApp->findChildren<QMenuBar*>()) {
    ASSERT_GE(bar->actions().size(), 2);
    EXPECT_EQ(bar->actions()[1]->text(), "&Edit");
  }
  QAction* undo = item("menuEditUndo");
  ASSERT_NE(undo, nullptr);
  EXPECT_FALSE(undo->isEnabled());
  EXPECT_TRUE(controller->predictor().enabled());
  controller->newBody();
  controller->newBody();
  EXPECT_TRUE(undo->isEnabled());
  EXPECT_TRUE(undo->text().startsWith("&Undo Create "));

  controller->edit();  // leave design mode and run
  controller->stepSim();
  EXPECT_FALSE(undo->isEnabled());
  EXPECT_FALSE(controller->predictor().enabled());
  controller->deleteAllBodies();  // changes the run only
  controller->edit();
  ASSERT_EQ(world().bodies->count(), 2);
  undo->trigger();
  EXPECT_EQ(world().bodies->count(), 1);
  EXPECT_TRUE(item("menuEditRedo")->isEnabled());
}

enum class Replace { Reset, New, Open, EditCurrent };

class DesignReplaced : public AppTest, public ::testing::WithParamInterface<Replace> {};

TEST_P(DesignReplaced, ForgetsTheHistory) {
  controller->newBody();
  ASSERT_EQ(controller->history().stack().count(), 1);
  switch (GetParam()) {
    case Replace::Reset:
      item("menuSimReset")->trigger();
      break;
    case Replace::New:
      controller->newProgram();
      break;
    case Replace::Open:
      controller->openFile("/nonexistent/world.ovd");
      break;
    case Replace::EditCurrent:
      controller->edit();
      item("menuSimEditCurrent")->trigger();
      break;
  }
  flush();
  EXPECT_EQ(controller->history().stack().count(), 0);
  EXPECT_FALSE(item("menuEditUndo")->isEnabled());
}

INSTANTIATE_TEST_SUITE_P(Commands, DesignReplaced,
                         ::testing::Values(Replace::Reset, Replace::New, Replace::Open,
                                           Replace::EditCurrent),
                         caseNames({"Reset", "New", "Open", "EditCurrent"}));

// The Graphs palette's toggle keeps flag, mark and window together, the
// palette samples a run, and entering design mode or Reset starts afresh.
TEST_F(AppTest, GraphsFollowARunAndStartAfreshWithTheDesign) {
  GraphsWindowController* graphs = controller->graphsPaletteController();
  QAction* toggle = item("menuSimGraphs");
  ASSERT_NE(toggle, nullptr);
  EXPECT_FALSE(toggle->isChecked());
  toggle->trigger();
  EXPECT_TRUE(toggle->isChecked());
  EXPECT_TRUE(graphs->window()->isVisible());

  designAndLeave(*controller);
  for (int i = 0; i < 50; ++i)
    controller->stepSim();
  controller->toggleSim();
  ASSERT_TRUE(QTest::qWaitFor([&] { return graphs->history().size() >= 2; }, 5000));
  controller->toggleSim();
  // Errors are measured from the state the run left design mode in, which
  // is the first sample, not from one taken fifty steps later.
  EXPECT_EQ(graphs->history().times().front(), 0.0);
  EXPECT_EQ(graphs->history().values(GraphSeries::EnergyError).front(), 0.0);
  for (QAction* restart : {item("menuSimEdit"), item("menuSimReset")}) {
    restart->trigger();
    EXPECT_TRUE(graphs->history().empty()) << restart->objectName().toStdString();
  }
  toggle->trigger();
  EXPECT_FALSE(graphs->window()->isVisible());
}

}  // namespace
