#include <array>

#include "palette_test_support.h"
#include "palettes/body_window_controller.h"
#include "palettes/number_text.h"

namespace {

const char* const kControls[] = {"ax",           "ay", "az", "color", "deleteButton", "mass",
                                 "name",         "px", "py", "pz",    "radius",       "traceenable",
                                 "vectorenable", "vx", "vy", "vz"};

class BodyPalette : public PaletteTest<BodyWindowController> {
 protected:
  void SetUp() override {
    giveView();
    earth = host.w.createBody();
    copyName(earth->name, "Earth");
    moon = host.w.createBody();
    copyName(moon->name, "Moon");
    view.selectedBodyID = earth->id;
  }

  // Every control disabled and showing nothing: fifteen and the delete
  // button.
  void expectEmptyAndDisabled() {
    EXPECT_EQ(::expectEmptyAndDisabled(win), 15);
    EXPECT_FALSE(win->findChild<QWidget*>(QStringLiteral("deleteButton"))->isEnabled());
  }

  Body* earth = nullptr;
  Body* moon = nullptr;
};

// Narrow fields show the start of any number.
TEST_F(BodyPalette, ShowingFillsEveryControlBeforeTheFirstTick) {
  earth->position = Vector::of(1.5, -2, 3e8);
  earth->velocity = Vector::of(-1.23456789e-05, -987654321.0, -1e-300);
  earth->color[0] = 1.0f;
  palette.becomeVisible();
  for (const char* name : kControls) {
    auto* w = win->findChild<QWidget*>(QString::fromLatin1(name));
    EXPECT_TRUE(w->isEnabled()) << name;
    if (auto* e = qobject_cast<QLineEdit*>(w)) {
      EXPECT_FALSE(e->text().isEmpty()) << name;
    }
  }
  EXPECT_EQ(f("pz")->text(), QStringLiteral("3e+08"));
  EXPECT_EQ(selectedItem(popUp(win, "traceenable")), "tracefalse");
  EXPECT_EQ(selectedItem(popUp(win, "vectorenable")), "vectortrue");
  EXPECT_EQ(win->findChild<ColorWell*>(QStringLiteral("color"))->components()[0], 1.0f);
  EXPECT_EQ(f("vx")->text(), QStringLiteral("-1.23457e-05"));
  show();
  for (const char* name : {"vx", "vy", "vz"}) {
    QLineEdit* v = f(name);
    EXPECT_EQ(v->cursorPosition(), 0) << name;
    EXPECT_GE(v->width(), v->fontMetrics().horizontalAdvance(v->text())) << name;
  }
}

TEST_F(BodyPalette, FollowsTheSelectionAndTheMainWindow) {
  show();
  view.selectedBodyID = moon->id;
  ASSERT_TRUE(waitForRefreshes(palette));
  EXPECT_EQ(f("name")->text(), QStringLiteral("Moon"));

  View other(1);
  other.selectedBodyID = earth->id;
  host.view = &other;
  ASSERT_TRUE(waitForRefreshes(palette));
  EXPECT_EQ(f("name")->text(), QStringLiteral("Earth"));

  // A main window without a selection, then none at all.
  View none(2);
  for (View* v : {&none, static_cast<View*>(nullptr)}) {
    host.view = v;
    ASSERT_TRUE(waitForRefreshes(palette));
    expectEmptyAndDisabled();
  }
}

// The body merges away while the user types into one of its fields: the
// palette empties, keeps the selection, and what was typed reaches no body.
TEST_F(BodyPalette, EmptiesWhenItsBodyIsMergedAwayAndCommitsNothingTyped) {
  host.w.merge = true;
  moon->position = earth->position;  // touching: the later body is absorbed
  view.selectedBodyID = moon->id;
  show();
  win->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(win));
  QTest::mouseClick(f("px"), Qt::LeftButton);
  typeInto(f("px"), QStringLiteral("99"));
  const int selected = view.selectedBodyID;
  host.w.step();
  ASSERT_EQ(host.w.findBodyById(selected), nullptr);
  ASSERT_TRUE(waitForRefreshes(palette));
  expectEmptyAndDisabled();
  EXPECT_EQ(view.selectedBodyID, selected);
  EXPECT_EQ(earth->position.x, 0.0);
}

TEST_F(BodyPalette, RenamesThroughTheControllerCuttingToWholeCharacters) {
  show();
  enter(f("name"), QStringLiteral("Gaia"));
  EXPECT_STREQ(earth->name, "Gaia");
  EXPECT_EQ(f("name")->text(), QStringLiteral("Gaia"));
  enter(f("name"), QString(10000, QChar(0x4E16)));  // three bytes each in UTF-8
  EXPECT_EQ(host.count("worldRenameBody"), 2);
  EXPECT_EQ(host.renamedTo.size(), 30000u);
  EXPECT_EQ(QString::fromUtf8(earth->name), QString(84, QChar(0x4E16)));
}

// The numeric fields in the order of bodyValues.
const char* const kNumberFields[] = {"px", "py", "pz", "vx",   "vy",    "vz",
                                     "ax", "ay", "az", "mass", "radius"};

std::array<double, 11> bodyValues(const Body& b) {
  return {b.position.x,     b.position.y, b.position.z,     b.velocity.x,
          b.velocity.y,     b.velocity.z, b.acceleration.x, b.acceleration.y,
          b.acceleration.z, b.mass,       b.radius};
}

class BodyFieldCommit : public BodyPalette, public testing::WithParamInterface<int> {};

TEST_P(BodyFieldCommit, WritesOnlyThatValueOfTheBody) {
  QLineEdit* typed = f(kNumberFields[GetParam()]);
  show();
  typeInto(typed, QStringLiteral("-7.25"));
  // The simulation moved the body after the palette last showed it.
  earth->position = Vector::of(11, 12, 13);
  earth->velocity = Vector::of(21, 22, 23);
  earth->acceleration = Vector::of(31, 32, 33);
  earth->mass = 41;
  earth->radius = 51;
  std::array<double, 11> expected = bodyValues(*earth);
  expected[GetParam()] = -7.25;
  QTest::keyClick(typed, Qt::Key_Return);
  EXPECT_EQ(bodyValues(*earth), expected);
  EXPECT_EQ(moon->position.x, 0.0);
}

INSTANTIATE_TEST_SUITE_P(Fields, BodyFieldCommit, testing::Range(0, 11),
                         [](const auto& p) { return std::string(kNumberFields[p.param]); });

TEST_F(BodyPalette, PopUpsAndColourWellSetTheBody) {
  show();
  chooseItem(popUp(win, "traceenable"), "tracetrue");
  chooseItem(popUp(win, "vectorenable"), "vectorfalse");
  EXPECT_TRUE(earth->traceEnable);
  EXPECT_FALSE(earth->showVectors);
  dialogs.color = QColor(0, 255, 0);
  QTest::mouseClick(win->findChild<ColorWell*>(QStringLiteral("color")), Qt::LeftButton);
  EXPECT_EQ(earth->color[0], 0.0f);
  EXPECT_EQ(earth->color[1], 1.0f);
  EXPECT_EQ(earth->color[2], 0.0f);
  dialogs.color.reset();  // cancelled: nothing changes
  QTest::mouseClick(win->findChild<ColorWell*>(QStringLiteral("color")), Qt::LeftButton);
  EXPECT_EQ(earth->color[1], 1.0f);
}

TEST_F(BodyPalette, ClickedFieldRefreshesUntilTypedIntoAndReturnWithoutTypingCommitsNothing) {
  moon->position = Vector::of(100, 0, 0);
  moon->velocity = Vector::of(0, 50, 0);
  view.selectedBodyID = moon->id;
  show();
  win->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(win));
  QLineEdit* py = f("py");
  QTest::mouseClick(py, Qt::LeftButton);
  ASSERT_TRUE(py->hasFocus());
  // The body moves on; the focused field follows it until the user types.
  for (int i = 0; i < 10; ++i)
    host.w.step();
  const QString moved = formatReal(moon->position.y);
  ASSERT_TRUE(QTest::qWaitFor([&] { return py->text() == moved; }, 2000));
  const Vector before = moon->position;
  for (int i = 0; i < 10; ++i)
    host.w.step();
  // Return in the untouched field writes nothing back: the body is not
  // moved to the value the field showed.
  QTest::keyClick(py, Qt::Key_Return);
  EXPECT_NE(moon->position.y, before.y);
  // Once typed into, the field keeps its text while the body moves on and
  // the other fields refresh, and Return moves the body there.
  typeInto(py, QStringLiteral("42"));
  host.w.step();
  moon->mass = 77;
  ASSERT_TRUE(waitForRefreshes(palette));
  EXPECT_EQ(py->text(), QStringLiteral("42"));
  EXPECT_EQ(f("mass")->text(), QStringLiteral("77"));
  QTest::keyClick(py, Qt::Key_Return);
  EXPECT_EQ(moon->position.y, 42.0);
}

}  // namespace
