// The Controller's parts on their own, without the application around them.
#include <gtest/gtest.h>

#include <QAction>
#include <QMainWindow>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include "app/app_menus.h"
#include "app/orrenvale_gl_window_controller.h"
#include "app/simulation_clock.h"
#include "app/view_window_registry.h"
#include "engine/world.h"
#include "tests/case_names.h"
#include "view/view_host.h"

namespace {

TEST(SimulationClock, TicksOnlyWhileRunningAndRefreshesOnlyWhileStopped) {
  int ticks = 0;
  int idles = 0;
  SimulationClock clock([&] { ++ticks; }, [&] { ++idles; });
  ASSERT_TRUE(QTest::qWaitFor([&] { return idles >= 1; }, 5000));
  EXPECT_EQ(ticks, 0);
  clock.start(0.0f);
  ASSERT_TRUE(clock.running());
  ASSERT_TRUE(QTest::qWaitFor([&] { return ticks >= 100; }, 5000));
  const int idlesWhileRunning = idles;
  // The acceleration timer fires twice while running, and refreshes nothing.
  QTimer* accelerations = nullptr;
  for (QTimer* t : clock.findChildren<QTimer*>())
    if (t->interval() == 200)
      accelerations = t;
  ASSERT_NE(accelerations, nullptr);
  QSignalSpy fired(accelerations, &QTimer::timeout);
  ASSERT_TRUE(QTest::qWaitFor([&] { return fired.count() >= 2; }, 5000));
  clock.stop();
  EXPECT_FALSE(clock.running());
  EXPECT_EQ(clock.updateTimer(), nullptr);
  EXPECT_EQ(idles, idlesWhileRunning);
}

struct MenuState {
  bool running, editing;
  bool runEnabled, runChecked, stepEnabled, editChecked, editCurrentEnabled;
};

class AppMenusTest : public ::testing::TestWithParam<MenuState> {};

TEST_P(AppMenusTest, SimulationItemsFollowTheClockAndDesignMode) {
  const MenuState s = GetParam();
  AppMenus menus;
  menus.showSimulationState(s.running, s.editing);
  EXPECT_EQ(menus.menuSimRun->isEnabled(), s.runEnabled);
  EXPECT_EQ(menus.menuSimRun->isChecked(), s.runChecked);
  EXPECT_EQ(menus.menuSimStep->isEnabled(), s.stepEnabled);
  EXPECT_EQ(menus.menuSimEdit->isChecked(), s.editChecked);
  EXPECT_EQ(menus.menuSimEditCurrent->isEnabled(), s.editCurrentEnabled);
  EXPECT_EQ(menus.menuSimRevert->isEnabled(), s.editCurrentEnabled);
  EXPECT_TRUE(menus.menuSimReset->isEnabled());
}

INSTANTIATE_TEST_SUITE_P(States, AppMenusTest,
                         ::testing::Values(MenuState{false, false, true, false, true, false, true},
                                           MenuState{true, false, true, true, false, false, true},
                                           MenuState{false, true, false, false, false, true,
                                                     false}),
                         caseNames({"Stopped", "Running", "DesignMode"}));

TEST(ViewWindowRegistry, MainWindowIsTheLastActivatedAndPassesBackOnClose) {
  std::vector<bool> announced;
  int closes = 0;
  // The views of the windows show a world of their own.
  struct Host : ViewHost {
    World& world() override { return w; }
    int panType() const override { return kPanTypeXY; }
    bool running() const override { return false; }
    World w;
  } host;
  ViewWindowRegistry registry(
      host, {[](QMenuBar*) {}, [](QWidget* w, const QString& t) { w->setWindowTitle(t); },
             [&](bool main) { announced.push_back(main); }, [&](bool) { ++closes; }});
  OrrenvaleGLWindowController* a = registry.open();
  OrrenvaleGLWindowController* b = registry.open();
  OrrenvaleGLWindowController* c = registry.open(QPoint(300, 200));
  EXPECT_EQ(c->window()->geometry().topLeft(), QPoint(300, 200));
  registry.windowActivated(a);
  EXPECT_EQ(registry.mainWindow(), a);
  announced.clear();
  // Closing the main window hands main to the one activated before it.
  a->window()->close();
  EXPECT_EQ(registry.mainWindow(), c);
  EXPECT_EQ(announced, (std::vector<bool>{false, true}));
  // Closing another only withdraws the view commands.
  b->window()->close();
  EXPECT_EQ(registry.mainWindow(), c);
  EXPECT_EQ(announced.back(), false);
  EXPECT_EQ(closes, 2);
  EXPECT_EQ(registry.windows(), std::vector<OrrenvaleGLWindowController*>{c});
  registry.deleteClosedWindows();
}

}  // namespace
