#include <QDialog>
#include <QPushButton>

#include "palette_test_support.h"
#include "palettes/simulation_window_controller.h"
#include "tests/case_names.h"

namespace {

using SimulationPalette = PaletteTest<SimulationWindowController>;

TEST_F(SimulationPalette, ShowingFillsEveryControlBeforeTheFirstTick) {
  palette.becomeVisible();
  for (QLineEdit* e : win->findChildren<QLineEdit*>())
    EXPECT_FALSE(e->text().isEmpty()) << e->objectName().toStdString();
  for (QComboBox* p : win->findChildren<QComboBox*>())
    EXPECT_GE(p->currentIndex(), 0) << p->objectName().toStdString();
  EXPECT_EQ(f("g")->text(), QStringLiteral("6.67259e-11"));
  EXPECT_EQ(f("tracehistory")->text(), QStringLiteral("20000"));
  EXPECT_EQ(selectedItem(popUp(win, "adaptive")), "adaptivefalse");
}

// What the world holds of the palette's parameters.
struct Params {
  std::string name;
  double g, e, timeStep;
  float speed;
  int32_t trace;
  bool adaptive, merge;
  bool operator==(const Params&) const = default;
};

Params paramsOf(const World& w) {
  return {w.name,
          w.gravitationalConstant,
          w.restitution,
          w.timeStep,
          w.millisecondsPerUpdate,
          w.traceHistoryPoints,
          w.adaptive,
          w.merge};
}

struct CommitCase {
  const char* field;
  const char* typed;
  void (*expect)(Params&);
};

class SimulationCommit : public SimulationPalette,
                         public testing::WithParamInterface<CommitCase> {};

// The speed goes through the controller, which bounds it.
TEST_P(SimulationCommit, WritesOnlyThatFieldsModelValue) {
  show();
  typeInto(f(GetParam().field), QString::fromLatin1(GetParam().typed));
  // The simulation changed every parameter after the palette last showed it.
  host.w.setName("Concurrent");
  host.w.gravitationalConstant = 1.0;
  host.w.restitution = 0.25;
  host.w.timeStep = 0.125;
  host.w.millisecondsPerUpdate = 3.0f;
  host.w.traceHistoryPoints = 9;
  host.w.adaptive = true;
  host.w.merge = false;
  Params expected = paramsOf(host.w);
  GetParam().expect(expected);

  QTest::keyClick(f(GetParam().field), Qt::Key_Return);
  EXPECT_EQ(paramsOf(host.w), expected);
  EXPECT_EQ(host.count("setWorldSpeed"), std::string(GetParam().field) == "speed" ? 1 : 0);
}

INSTANTIATE_TEST_SUITE_P(
    Fields, SimulationCommit,
    testing::Values(CommitCase{"name", "Seven", [](Params& p) { p.name = "Seven"; }},
                    CommitCase{"g", "7", [](Params& p) { p.g = 7.0; }},
                    CommitCase{"e", "0.7", [](Params& p) { p.e = 0.7; }},
                    CommitCase{"speed", "7", [](Params& p) { p.speed = 7.0f; }},
                    CommitCase{"timestep", "7e-3", [](Params& p) { p.timeStep = 7e-3; }},
                    CommitCase{"tracehistory", "7", [](Params& p) { p.trace = 7; }}),
    [](const auto& p) { return std::string(p.param.field); });

TEST_F(SimulationPalette, LeavingAnUntouchedFieldKeepsTheFullPrecisionValue) {
  show();
  win->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(win));
  QLineEdit* g = f("g");
  QTest::mouseClick(g, Qt::LeftButton);
  QTest::keyClick(g, Qt::Key_Tab);
  EXPECT_EQ(host.w.gravitationalConstant, World::kDefaultGravitationalConstant);

  // Leaving a field after typing commits what was typed.
  QTest::mouseClick(g, Qt::LeftButton);
  typeInto(g, QStringLiteral("3"));
  QTest::keyClick(g, Qt::Key_Tab);
  EXPECT_EQ(host.w.gravitationalConstant, 3.0);

  // Escape drops the typed text and shows the model again.
  typeInto(f("timestep"), QStringLiteral("99"));
  QTest::keyClick(f("timestep"), Qt::Key_Escape);
  EXPECT_EQ(f("timestep")->text(), QStringLiteral("0.01"));
  EXPECT_EQ(host.w.timeStep, World::kDefaultTimeStep);
}

// The world before the choice is one that shows another item: merging wins
// over the coefficient, which then shows 0 as no merge, 1 as elastic and
// anything else as other. Other, chosen first, stays chosen while the
// coefficient is one until another item is chosen.
struct CollisionCase {
  bool mergeBefore;
  double restitutionBefore;
  const char* shownBefore;
  const char* item;
  double restitution;
  bool merge;
};

class CollisionModelChoice : public SimulationPalette,
                             public testing::WithParamInterface<CollisionCase> {};

TEST_P(CollisionModelChoice, ShowsTheWorldsModelThenSetsCoefficientAndMerge) {
  host.w.merge = GetParam().mergeBefore;
  host.w.restitution = GetParam().restitutionBefore;
  show();
  EXPECT_EQ(selectedItem(popUp(win, "collisiontype")), GetParam().shownBefore);
  chooseItem(popUp(win, "collisiontype"), "collisionother");
  chooseItem(popUp(win, "collisiontype"), GetParam().item);
  EXPECT_EQ(host.w.restitution, GetParam().restitution);
  EXPECT_EQ(host.w.merge, GetParam().merge);
  EXPECT_EQ(f("e")->isEnabled(), !GetParam().merge);
  ASSERT_TRUE(waitForRefreshes(palette));
  EXPECT_EQ(selectedItem(popUp(win, "collisiontype")), GetParam().item);
}

INSTANTIATE_TEST_SUITE_P(Items, CollisionModelChoice,
                         testing::Values(CollisionCase{false, 0.0, "collisioninelasticnomerge",
                                                       "collisionelastic", 1.0, false},
                                         CollisionCase{false, 0.5, "collisionother",
                                                       "collisioninelasticmerge", 0.0, true},
                                         CollisionCase{true, 0.5, "collisioninelasticmerge",
                                                       "collisioninelasticnomerge", 0.0, false},
                                         CollisionCase{false, 1.0, "collisionelastic",
                                                       "collisionother", 1.0, false}),
                         [](const auto& p) { return std::string(p.param.item); });

struct ButtonCase {
  bool editing, running;
  bool runEnabled, stepEnabled;
  const char* runTitle;  // null where the state does not set it
  const char* editTitle;
};

class SimulationButtons : public SimulationPalette,
                          public testing::WithParamInterface<ButtonCase> {};

TEST_P(SimulationButtons, FollowRunningAndDesignMode) {
  show();
  host.isEditing = GetParam().editing;
  host.isRunning = GetParam().running;
  palette.setControlsState();
  EXPECT_EQ(palette.runButton()->isEnabled(), GetParam().runEnabled);
  EXPECT_EQ(palette.stepButton()->isEnabled(), GetParam().stepEnabled);
  if (GetParam().runTitle != nullptr) {
    EXPECT_EQ(palette.runButton()->text(), QString::fromLatin1(GetParam().runTitle));
  }
  EXPECT_EQ(palette.editButton()->text(), QString::fromLatin1(GetParam().editTitle));
}

INSTANTIATE_TEST_SUITE_P(
    States, SimulationButtons,
    testing::Values(ButtonCase{true, false, false, false, nullptr, "Leave design mode"},
                    ButtonCase{false, true, true, false, "Stop simulation", "Enter design mode"},
                    ButtonCase{false, false, true, true, "Run simulation", "Enter design mode"}),
    caseNames({"DesignMode", "Running", "Stopped"}));

// The step button's command runs at once, and the palette shows its result
// without waiting for a refresh.
TEST_F(SimulationPalette, ButtonsSendTheirCommandsWithThemselvesAsSender) {
  show();
  ASSERT_EQ(f("elapsedtime")->text(), QStringLiteral("0"));
  QTest::mouseClick(palette.runButton(), Qt::LeftButton);
  QTest::mouseClick(palette.editButton(), Qt::LeftButton);
  QTest::mouseClick(win->findChild<QPushButton*>(QStringLiteral("createButton")), Qt::LeftButton);
  QTest::mouseClick(palette.stepButton(), Qt::LeftButton);
  ASSERT_EQ(host.commands.size(), 4u);
  EXPECT_EQ(host.commands[0].name, "toggleSim");
  EXPECT_EQ(host.commands[0].sender, palette.runButton());
  EXPECT_EQ(host.commands[1].name, "edit");
  EXPECT_EQ(host.commands[2].name, "newBody");
  EXPECT_EQ(host.commands[3].name, "stepSim");
  EXPECT_EQ(f("elapsedtime")->text(), QStringLiteral("0.01"));
}

TEST_F(SimulationPalette, RefreshPausesWhileADialogIsUp) {
  show();
  QDialog dialog;
  dialog.setModal(true);
  dialog.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&dialog));
  host.w.setName("Changed under a dialog");
  ASSERT_TRUE(waitForRefreshes(palette));
  EXPECT_EQ(f("name")->text(), QStringLiteral("Default world"));
  dialog.close();
  ASSERT_TRUE(QTest::qWaitFor(
      [&] { return f("name")->text() == QStringLiteral("Changed under a dialog"); }, 5000));
}

}  // namespace
