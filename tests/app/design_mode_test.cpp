#include <gtest/gtest.h>

#include <QMenuBar>

#include "app/design_history.h"
#include "app_test_support.h"
#include "palettes/graphs_window_controller.h"
#include "view/path_predictor.h"

namespace {

// Designs a world of two bodies and a moved camera, then leaves design mode.
void designAndLeave(Controller& c) {
  c.newBody(nullptr);
  c.newBody(nullptr);
  World& w = c.world();
  w.findBodyById(100)->velocity.y = 2.0;
  w.findBodyById(101)->position.x = 50.0;
  w.timeStep = 0.05;
  c.currentView()->cameraPosition.z = 250.0;
  c.edit(nullptr);
}

TEST_F(AppTest, EnteringDesignModeAgainRestoresTheDesign) {
  designAndLeave(*controller);
  controller->edit(nullptr);  // back without a run, and out again
  EXPECT_EQ(world().findBodyById(101)->position.x, 50.0);
  controller->edit(nullptr);
  for (int i = 0; i < 20; ++i)
    controller->stepSim(nullptr);
  world().timeStep = 0.5;
  EXPECT_NE(world().findBodyById(100)->position.y, 0.0);

  controller->edit(nullptr);
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
  controller->toggleSim(nullptr);
  ASSERT_TRUE(QTest::qWaitFor([&] { return world().elapsedTime > 0; }, 5000));
  controller->revertSim(nullptr);
  EXPECT_FALSE(controller->running());
  EXPECT_FALSE(controller->editing());
  EXPECT_EQ(world().elapsedTime, 0.0);
  EXPECT_EQ(world().findBodyById(100)->position.y, 0.0);
  EXPECT_TRUE(item("menuSimStep")->isEnabled());

  for (int i = 0; i < 5; ++i)
    controller->stepSim(nullptr);
  const double y = world().findBodyById(100)->position.y;
  controller->editCurrent(nullptr);
  EXPECT_TRUE(controller->editing());
  EXPECT_EQ(world().findBodyById(100)->position.y, y);
  controller->edit(nullptr);
  controller->stepSim(nullptr);
  controller->edit(nullptr);
  EXPECT_EQ(world().findBodyById(100)->position.y, y);
}

TEST_F(AppTest, ResetLeavesNoViewWindowAndNewBodyOpensOne) {
  designAndLeave(*controller);
  controller->resetSim(item("menuSimReset"));
  flush();
  EXPECT_EQ(viewWindowCount(), 0);
  EXPECT_TRUE(controller->editing());
  EXPECT_EQ(world().bodies->count(), 0);
  EXPECT_TRUE(controller->bodyMenuItems().empty());
  EXPECT_FALSE(item("menuZin")->isEnabled());
  // The design went with the reset: a run and back finds it empty.
  controller->edit(nullptr);
  controller->edit(nullptr);
  EXPECT_EQ(world().bodies->count(), 0);

  controller->showBodyPaletteFromMenu(nullptr);  // hide it first
  ASSERT_FALSE(controller->bodyPaletteVisible());
  controller->newBody(nullptr);
  EXPECT_EQ(viewWindowCount(), 1);
  ASSERT_NE(controller->currentView(), nullptr);
  EXPECT_EQ(controller->currentView()->selectedBodyID, 100);
  EXPECT_TRUE(controller->bodyPaletteVisible());
  EXPECT_TRUE(controller->editing());
  // Still designing: Step stays off even though adding a body stopped the clock.
  EXPECT_FALSE(item("menuSimStep")->isEnabled());
}

TEST_F(AppTest, NewAsksFirstAndCancelKeepsEverything) {
  designAndLeave(*controller);
  panels.confirmAnswer = Panels::Answer::Cancel;
  controller->menuNew(nullptr);
  EXPECT_EQ(panels.confirmations, 1);
  EXPECT_EQ(world().bodies->count(), 2);
  EXPECT_FALSE(controller->editing());

  // "Save" with a cancelled save panel still goes on to the new world.
  panels.confirmAnswer = Panels::Answer::Save;
  controller->menuNew(nullptr);
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
  controller->resetSim(nullptr);
  flush();
  EXPECT_EQ(viewWindowCount(), 0);
  // Its menu bar keeps every command reachable.
  EXPECT_TRUE(controller->simPaletteVisible());
  EXPECT_TRUE(controller->simulationPaletteController()->window()->isVisible());
}

std::vector<QPoint> viewWindowPositions(const Controller& c) {
  std::vector<QPoint> at;
  for (const OrrenvaleGLWindowController* w : c.viewWindows())
    at.push_back(w->window()->geometry().topLeft());
  return at;
}

// Round trips close and reopen the view windows; each comes back where its
// window was when it closed, not in the cascade of new windows.
TEST_F(AppTest, ViewWindowsReopenWhereTheyWere) {
  controller->newView(nullptr);
  const std::vector<QPoint> placed = {QPoint(310, 220), QPoint(520, 360)};
  for (std::size_t i = 0; i < placed.size(); ++i) {
    QWidget* window = controller->viewWindows()[i]->window();
    window->setGeometry(QRect(placed[i], window->size()));
  }
  controller->edit(nullptr);  // leave design mode: the windows stay
  controller->edit(nullptr);  // enter it again: they close and reopen
  EXPECT_EQ(viewWindowPositions(*controller), placed);

  // Moved during a run, a window comes back where it was at Revert.
  controller->edit(nullptr);
  QWidget* first = controller->viewWindows()[0]->window();
  first->setGeometry(QRect(QPoint(100, 90), first->size()));
  controller->newView(nullptr);  // not part of the design: gone after Revert
  controller->revertSim(nullptr);
  EXPECT_EQ(viewWindowPositions(*controller), (std::vector<QPoint>{QPoint(100, 90), placed[1]}));

  // Edit Current takes the windows as they are.
  controller->editCurrent(nullptr);
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
  controller->newBody(nullptr);
  controller->newBody(nullptr);
  EXPECT_TRUE(undo->isEnabled());
  EXPECT_TRUE(undo->text().startsWith("&Undo Create "));

  controller->edit(nullptr);  // leave design mode and run
  controller->stepSim(nullptr);
  EXPECT_FALSE(undo->isEnabled());
  EXPECT_FALSE(controller->predictor().enabled());
  controller->deleteAllBodies(nullptr);  // changes the run only
  controller->edit(nullptr);
  ASSERT_EQ(world().bodies->count(), 2);
  undo->trigger();
  EXPECT_EQ(world().bodies->count(), 1);
  EXPECT_TRUE(item("menuEditRedo")->isEnabled());
}

enum class Replace { Reset, New, Open, EditCurrent };

class DesignReplaced : public AppTest, public ::testing::WithParamInterface<Replace> {};

TEST_P(DesignReplaced, ForgetsTheHistory) {
  controller->newBody(nullptr);
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
      controller->edit(nullptr);
      item("menuSimEditCurrent")->trigger();
      break;
  }
  flush();
  EXPECT_EQ(controller->history().stack().count(), 0);
  EXPECT_FALSE(item("menuEditUndo")->isEnabled());
}

INSTANTIATE_TEST_SUITE_P(Commands, DesignReplaced,
                         ::testing::Values(Replace::Reset, Replace::New, Replace::Open,
                                           Replace::EditCurrent));

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
    controller->stepSim(nullptr);
  controller->toggleSim(nullptr);
  ASSERT_TRUE(QTest::qWaitFor([&] { return graphs->history().size() >= 2; }, 5000));
  controller->toggleSim(nullptr);
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
