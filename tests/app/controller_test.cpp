#include <gtest/gtest.h>

#include <QDialog>
#include <QFile>
#include <QLabel>
#include <QMenuBar>
#include <QScreen>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <algorithm>
#include <limits>

#include "app/splash_window.h"
#include "app_test_support.h"
#include "tests/case_names.h"
#include "tests/engine/test_support.h"
#include "tests/palettes/close_box.h"

namespace {

auto activeUpdateTimers(const Controller& c) {
  const QList<QTimer*> timers = c.findChildren<QTimer*>("updateTimer");
  return std::count_if(timers.begin(), timers.end(), [](QTimer* t) { return t->isActive(); });
}

TEST_F(AppTest, StartUpLeavesOneViewWindowInDesignMode) {
  EXPECT_EQ(viewWindowCount(), 1);
  EXPECT_EQ(mainWindowTitle(), "View 0");
  EXPECT_TRUE(controller->editing());
  EXPECT_FALSE(controller->running());
  EXPECT_TRUE(item("menuViewXY")->isChecked());
  EXPECT_TRUE(item("menuFilePrint")->isEnabled());
  ASSERT_NE(controller->splashWindow(), nullptr);
  EXPECT_TRUE(controller->splashWindow()->isVisible());
}

struct SpeedCase {
  float in;
  float stored;
  int interval;
};

class WorldSpeed : public AppTest, public ::testing::WithParamInterface<SpeedCase> {};

// The speed is bounded below except for zero. The timer counts whole
// milliseconds, as fast as possible below half a millisecond, and the
// slowest it can count for any speed beyond it, never the fastest.
TEST_P(WorldSpeed, IsBoundedAndPacesTheTimer) {
  controller->edit();
  controller->runSim();
  controller->setWorldSpeed(GetParam().in);
  EXPECT_EQ(world().millisecondsPerUpdate, GetParam().stored);
  ASSERT_TRUE(controller->running());
  EXPECT_EQ(controller->clock().updateTimer()->interval(), GetParam().interval);
}

constexpr int kSlowest = std::numeric_limits<int>::max();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

INSTANTIATE_TEST_SUITE_P(Speeds, WorldSpeed,
                         ::testing::Values(SpeedCase{0.0f, 0.0f, 0}, SpeedCase{0.005f, 0.01f, 0},
                                           SpeedCase{-3.0f, 0.01f, 0}, SpeedCase{0.4f, 0.4f, 0},
                                           SpeedCase{20.0f, 20.0f, 20},
                                           SpeedCase{2147483648.0f, 2147483648.0f, kSlowest},
                                           SpeedCase{kInfinity, kInfinity, kSlowest}),
                         caseNames({"Zero", "BelowTheBound", "Negative", "Fraction", "Twenty",
                                    "TwoToThe31", "Infinite"}));

TEST_F(AppTest, ThereIsNeverMoreThanOneUpdateTimer) {
  controller->edit();  // leave design mode
  EXPECT_EQ(activeUpdateTimers(*controller), 0);
  controller->runSim();
  controller->runSim();
  controller->setWorldSpeed(20.0f);
  EXPECT_TRUE(controller->running());
  EXPECT_EQ(activeUpdateTimers(*controller), 1);
  controller->toggleSim();
  controller->stopSim();
  EXPECT_FALSE(controller->running());
  EXPECT_EQ(activeUpdateTimers(*controller), 0);
  // A speed set while stopped is the next run's.
  controller->setWorldSpeed(35.0f);
  EXPECT_EQ(controller->clock().updateTimer(), nullptr);
  controller->runSim();
  EXPECT_EQ(controller->clock().updateTimer()->interval(), 35);
}

// Step takes one step; running goes on until a modal dialog opens, under
// which the clock's timer fires many times and the world stays where it was.
TEST_F(AppTest, StepTakesOneStepAndTimersWaitWhileAModalDialogIsOpen) {
  controller->edit();
  controller->stepSim();
  EXPECT_EQ(world().elapsedTime, world().timeStep);
  controller->toggleSim();
  ASSERT_TRUE(QTest::qWaitFor([&] { return world().elapsedTime > world().timeStep; }, 5000));
  double during[2] = {};
  QDialog dialog;
  QSignalSpy ticks(controller->clock().updateTimer(), &QTimer::timeout);
  QTimer::singleShot(0, &dialog, [&] {
    during[0] = world().elapsedTime;
    ticks.clear();
    EXPECT_TRUE(QTest::qWaitFor([&] { return ticks.count() >= 20; }, 5000));
    during[1] = world().elapsedTime;
    dialog.accept();
  });
  dialog.exec();
  EXPECT_EQ(during[0], during[1]);
  ASSERT_TRUE(QTest::qWaitFor([&] { return world().elapsedTime > during[1]; }, 5000));
}

TEST_F(AppTest, AccelerationsStayCurrentWhileStopped) {
  world().gravitationalConstant = 1.0;
  controller->newBody();
  controller->newBody();
  world().findBodyById(101)->position.x = 10.0;
  // The acceleration timer brings it up to date within 0.2 s.
  EXPECT_TRUE(
      QTest::qWaitFor([&] { return world().findBodyById(100)->acceleration.x == 0.01; }, 5000));
}

TEST_F(AppTest, BodyMenuFollowsTheWorld) {
  controller->newBody();
  controller->newBody();
  controller->newBody();
  EXPECT_EQ(bodyMenuTitles(), (std::vector<QString>{"Body 0", "Body 1", "Body 2"}));
  world().deleteBodyById(101);
  EXPECT_EQ(bodyMenuTitles(), (std::vector<QString>{"Body 0", "Body 2"}));
  controller->worldRenameBody(world().findBodyById(102), "Body 0");
  EXPECT_STREQ(world().findBodyById(102)->name, "Body 0");
  EXPECT_EQ(bodyMenuTitles(), (std::vector<QString>{"Body 0", "Body 0"}));
  // Choosing either item selects the first body of that name.
  controller->menus().bodyItems()[1]->trigger();
  EXPECT_EQ(controller->currentView()->selectedBodyID, 100);
  // A merge deletes the younger body and with it one item.
  world().findBodyById(102)->position = world().findBodyById(100)->position;
  controller->edit();
  controller->stepSim();
  EXPECT_EQ(world().bodies->count(), 1);
  EXPECT_EQ(bodyMenuTitles(), (std::vector<QString>{"Body 0"}));
  controller->deleteAllBodies();
  EXPECT_TRUE(bodyMenuTitles().empty());
  EXPECT_NE(item("menuBodyCreateBody"), nullptr);
  controller->newBody();
  EXPECT_EQ(world().bodies->count(), 1);
  Body* newest = world().findBodyById(103);
  ASSERT_NE(newest, nullptr);
  // A rename that finds no item with the body's name changes nothing.
  copyName(newest->name, "Ghost");
  controller->worldRenameBody(newest, "Nobody");
  EXPECT_STREQ(newest->name, "Ghost");
}

// With every view window closed the view commands are off and do nothing.
TEST_F(AppTest, ViewCommandsWithoutAMainWindowDoNothing) {
  controller->closeAllWindows();
  flush();
  EXPECT_EQ(controller->windows().mainWindow(), nullptr);
  EXPECT_FALSE(item("menuZin")->isEnabled());
  EXPECT_FALSE(item("menuViewTIFF")->isEnabled());
  controller->handleViewKeyCommands(item("menuZin"));
}

TEST_F(AppTest, ViewCommandsReachTheMainView) {
  View* v = controller->currentView();
  const double z = v->cameraPosition.z;
  item("menuZin")->trigger();
  EXPECT_LT(v->cameraPosition.z, z);
  const double x = v->cameraPosition.x;
  item("menuPanRight")->trigger();
  EXPECT_NE(v->cameraPosition.x, x);
  controller->newBody();
  controller->newBody();
  EXPECT_EQ(v->selectedBodyID, 101);
  item("menuSelectPrev")->trigger();
  EXPECT_EQ(v->selectedBodyID, 100);
  item("menuDeleteThis")->trigger();
  EXPECT_EQ(world().findBodyById(100), nullptr);
  // The pan plane is one setting for the application, one item checked.
  item("menuViewXZ")->trigger();
  EXPECT_EQ(controller->panType(), kPanTypeXZ);
  EXPECT_TRUE(item("menuViewXZ")->isChecked());
  EXPECT_FALSE(item("menuViewXY")->isChecked());
  item("menuViewYZ")->trigger();
  EXPECT_EQ(controller->panType(), kPanTypeYZ);
  EXPECT_FALSE(item("menuViewXZ")->isChecked());
}

TEST_F(AppTest, PaletteTogglesKeepFlagMarkAndWindowInStep) {
  item("menuSimPalette")->trigger();
  EXPECT_FALSE(controller->menus().menuSimPalette->isChecked());
  EXPECT_FALSE(item("menuSimPalette")->isChecked());
  EXPECT_FALSE(controller->simulationPaletteController()->window()->isVisible());
  item("menuSimPalette")->trigger();
  EXPECT_TRUE(controller->menus().menuSimPalette->isChecked());
  EXPECT_TRUE(controller->simulationPaletteController()->window()->isVisible());
  // The close box ends in the same toggle.
  ASSERT_TRUE(clickCloseBox(controller->bodyPaletteController()->window()));
  EXPECT_FALSE(controller->menus().menuBodyInfoPalette->isChecked());
  EXPECT_FALSE(item("menuBodyInfoPalette")->isChecked());
  item("menuBodyInfoPalette")->trigger();
  EXPECT_TRUE(controller->bodyPaletteController()->window()->isVisible());
  item("menuSimOutput")->trigger();
  EXPECT_TRUE(controller->menus().menuSimOutput->isChecked());
  EXPECT_TRUE(item("menuSimOutput")->isChecked());
  ASSERT_TRUE(clickCloseBox(controller->textPaletteController()->window()));
  EXPECT_FALSE(controller->menus().menuSimOutput->isChecked());
  EXPECT_FALSE(item("menuSimOutput")->isChecked());
}

TEST_F(AppTest, WindowTitleSetsAMinimumThatShowsTitleAndMenusWithinTheScreen) {
  QMainWindow* window = controller->windows().mainWindow()->window();
  const QSize asked = window->size();
  const QString title = "A rather long view name for this window";
  controller->setWindowTitleAndMinSize(window, title);
  EXPECT_EQ(window->windowTitle(), title);
  QFont bold = window->font();
  bold.setBold(true);
  EXPECT_GT(window->minimumHeight(), QFontMetrics(bold).horizontalAdvance(title));
  EXPECT_GE(window->minimumWidth(), window->minimumHeight());
  EXPECT_GE(window->minimumWidth(), window->menuBar()->sizeHint().width());

  // A name far too long for the screen: the window grows to the screen and
  // no further, and shrinks back to the size it had once the name is short.
  const QSize screen = window->screen()->availableSize();
  controller->setWindowTitleAndMinSize(window, QString(254, QChar('W')));
  EXPECT_LE(window->width(), screen.width());
  EXPECT_LE(window->height(), screen.height());
  controller->setWindowTitleAndMinSize(window, "View 0");
  EXPECT_EQ(window->size(), asked);
}

TEST_F(AppTest, SizeFromADatafileIsBoundedByTheScreen) {
  QTemporaryDir dir;
  const QString path = dir.filePath("huge.ovd");
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict>
    <key>Views</key><dict><key>0</key><dict>
    <key>Window width</key><integer>100000</integer>
    <key>Window height</key><integer>2147483647</integer></dict></dict></dict></plist>)");
  file.close();
  controller->openFile(path);
  ASSERT_EQ(viewWindowCount(), 1);
  QMainWindow* window = controller->windows().mainWindow()->window();
  const QRect area = window->screen()->availableGeometry();
  EXPECT_LE(window->width(), area.width());
  EXPECT_LE(window->height(), area.height());
  EXPECT_TRUE(area.contains(window->geometry().topLeft()));
}

TEST_F(AppTest, SplashLinesReadOneAboveTheOtherOnALightGround) {
  SplashWindow* splash = controller->splashWindow();
  QList<QLabel*> lines;
  for (QLabel* label : splash->findChildren<QLabel*>())
    if (!label->text().isEmpty())
      lines.push_back(label);
  ASSERT_EQ(lines.size(), 2);
  std::sort(lines.begin(), lines.end(),
            [](QLabel* a, QLabel* b) { return a->geometry().top() < b->geometry().top(); });
  // The upper line's text sits at the top of its box, the lower line's at
  // the bottom: their text rows do not overlap.
  const int upperBottom = lines[0]->geometry().top() + lines[0]->fontMetrics().height();
  const int lowerTop = lines[1]->geometry().bottom() + 1 - lines[1]->fontMetrics().height();
  EXPECT_LE(upperBottom, lowerTop);
  // Under both lines the picture is light, so grey 0.3 and 0.6 read well.
  const QImage picture = splash->grab().toImage();
  for (QLabel* line : lines) {
    const QColor ground =
        picture.pixelColor(line->geometry().left() + 2, line->geometry().center().y());
    EXPECT_GT(ground.lightness(), 200) << line->text().toStdString();
  }
}

// An adaptive step that would refine for hours shows a progress panel; its
// Cancel leaves the world as it was before the step and stops the run.
TEST_F(AppTest, CancellingALongStepRestoresTheWorldAndStops) {
  World& w = world();
  w.gravitationalConstant = 1;
  w.adaptive = true;
  w.timeStep = 100;
  for (double side : {1.0, -1.0}) {
    controller->newBody();
    Body* b = w.findBodyById(controller->currentView()->selectedBodyID);
    b->position = Vector::of(side, 0, 0);
    b->velocity = Vector::of(0, 0.05 * side, 0);
    b->radius = 0;
    b->traceEnable = true;
  }
  controller->edit();
  w.computeAccelerations();
  const std::vector<uint64_t> before = stateBits(w);
  panels.cancelProgressAt = 2;
  controller->toggleSim();
  ASSERT_TRUE(QTest::qWaitFor([&] { return !controller->running(); }, 60000));
  EXPECT_EQ(panels.progressTitles, std::vector<QString>{"Long Step"});
  ASSERT_EQ(panels.progressTexts.size(), 2u);
  EXPECT_TRUE(panels.progressTexts[0].startsWith("Refining the time step"));
  EXPECT_EQ(stateBits(w), before);
  EXPECT_FALSE(item("menuSimRun")->isChecked());
  EXPECT_TRUE(item("menuSimStep")->isEnabled());
}

}  // namespace
