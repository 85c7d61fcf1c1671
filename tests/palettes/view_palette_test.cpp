#include <array>
#include <cmath>

#include "palette_test_support.h"
#include "palettes/view_window_controller.h"
#include "tests/case_names.h"

namespace {

class ViewPalette : public PaletteTest<ViewWindowController> {
 protected:
  void SetUp() override { giveView(); }
};

TEST_F(ViewPalette, ShowingFillsEveryControlAndTitlesTheViewWindow) {
  palette.becomeVisible();
  for (const char* name : {"name", "cx", "cy", "cz", "fx", "fy", "fz", "tr", "tp", "ty",
                           "autodistance", "gridspacing"})
    EXPECT_FALSE(f(name)->text().isEmpty()) << name;
  EXPECT_EQ(f("name")->text(), QStringLiteral("View 0"));
  EXPECT_EQ(f("cz")->text(), QStringLiteral("400"));
  EXPECT_EQ(f("autodistance")->text(), QStringLiteral("200"));
  EXPECT_EQ(f("gridspacing")->text(), QStringLiteral("100"));
  EXPECT_EQ(selectedItem(popUp(win, "trackball")), "trackballtrue");
  EXPECT_EQ(selectedItem(popUp(win, "gridenable")), "gridtrue");
  EXPECT_EQ(selectedItem(popUp(win, "traceenable")), "tracetrue");
  EXPECT_EQ(selectedItem(popUp(win, "vectors")), "vtrue");
  EXPECT_EQ(selectedItem(popUp(win, "tracesrelative")), "tracesworld");
  EXPECT_TRUE(win->findChild<ColorWell*>(QStringLiteral("gridcolor"))->hasColor());
  EXPECT_EQ(viewWindow.windowTitle(), QStringLiteral("View 0"));
}

TEST_F(ViewPalette, AnglesReadBackAsTheOrientationTheyGive) {
  show();
  enter(f("tr"), QStringLiteral("30"));
  EXPECT_EQ(f("tr")->text(), QStringLiteral("30"));
  // "%g" shows six significant digits; zero angles may come back as rounding
  // noise of the quaternion conversion, far below a millionth of a degree.
  EXPECT_NEAR(f("tp")->text().toDouble(), 0.0, 1e-6);
  EXPECT_NEAR(f("ty")->text().toDouble(), 0.0, 1e-6);
  enter(f("tr"), QStringLiteral("0"));
  enter(f("tp"), QStringLiteral("120"));
  // Pitching 120 degrees is rolling and yawing half a turn with 60 of pitch.
  EXPECT_EQ(f("tp")->text(), QStringLiteral("60"));
  EXPECT_EQ(f("tr")->text().remove(QLatin1Char('-')), QStringLiteral("180"));
  EXPECT_EQ(f("ty")->text().remove(QLatin1Char('-')), QStringLiteral("180"));
}

struct TrackingCase {
  const char* item;
  bool centerOfMass, body;
  bool bodyFieldEnabled, distanceEnabled;
};

class TrackingMode : public ViewPalette, public testing::WithParamInterface<TrackingCase> {};

// Both flags set show as tracking a body; each choice sets both flags.
TEST_P(TrackingMode, SetsTheFlagsAndEnablesTheFieldsThatApply) {
  view.trackBody = true;
  view.trackCenterOfMass = true;
  show();
  EXPECT_EQ(selectedItem(popUp(win, "type")), "viewtrackbody");
  chooseItem(popUp(win, "type"), "viewuserdefined");
  chooseItem(popUp(win, "type"), GetParam().item);
  EXPECT_EQ(view.trackCenterOfMass, GetParam().centerOfMass);
  EXPECT_EQ(view.trackBody, GetParam().body);
  EXPECT_EQ(f("bodytotrack")->isEnabled(), GetParam().bodyFieldEnabled);
  EXPECT_EQ(f("autodistance")->isEnabled(), GetParam().distanceEnabled);
  EXPECT_EQ(selectedItem(popUp(win, "type")), GetParam().item);
}

INSTANTIATE_TEST_SUITE_P(Items, TrackingMode,
                         testing::Values(TrackingCase{"viewuserdefined", false, false, false,
                                                      false},
                                         TrackingCase{"viewtrackcom", true, false, false, true},
                                         TrackingCase{"viewtrackbody", false, true, true, true}),
                         [](const auto& p) { return std::string(p.param.item); });

TEST_F(ViewPalette, TrackedBodyIsChosenByNameAndAnUnknownNameChangesNothing) {
  Body* earth = host.w.createBody();
  copyName(earth->name, "Earth");
  Body* mars = host.w.createBody();
  copyName(mars->name, "Mars");
  view.trackBody = true;
  view.trackBodyID = earth->id;
  show();
  EXPECT_EQ(f("bodytotrack")->text(), QStringLiteral("Earth"));

  enter(f("bodytotrack"), QStringLiteral("Pluto"));
  EXPECT_EQ(view.trackBodyID, earth->id);
  EXPECT_EQ(f("bodytotrack")->text(), QStringLiteral("Earth"));

  enter(f("bodytotrack"), QStringLiteral("Mars"));
  EXPECT_EQ(view.trackBodyID, mars->id);

  host.w.deleteBodyById(mars->id);
  ASSERT_TRUE(waitForRefreshes(palette));
  EXPECT_TRUE(f("bodytotrack")->text().isEmpty());
}

TEST_F(ViewPalette, RenamingTheViewRetitlesItsWindowAtOnce) {
  show();
  enter(f("name"), QStringLiteral("Top view"));
  EXPECT_STREQ(view.name, "Top view");
  EXPECT_EQ(viewWindow.windowTitle(), QStringLiteral("Top view"));
}

// The numeric fields in the order of viewValues.
const char* const kNumberFields[] = {"cx", "cy", "cz",          "fx",
                                     "fy", "fz", "gridspacing", "autodistance"};

std::array<double, 8> viewValues(const View& v) {
  return {v.cameraPosition.x, v.cameraPosition.y, v.cameraPosition.z, v.cameraFocus.x,
          v.cameraFocus.y,    v.cameraFocus.z,    v.gridlineSpacing,  v.cameraAutodistance};
}

class ViewFieldCommit : public ViewPalette, public testing::WithParamInterface<int> {};

TEST_P(ViewFieldCommit, StoresTheTypedNumberInItsFieldOnly) {
  view.trackCenterOfMass = true;  // the tracking distance is editable only while tracking
  show();
  std::array<double, 8> expected = viewValues(view);
  expected[GetParam()] = -12.5;
  enter(f(kNumberFields[GetParam()]), QStringLiteral("-12.5"));
  EXPECT_EQ(viewValues(view), expected);
}

INSTANTIATE_TEST_SUITE_P(Fields, ViewFieldCommit, testing::Range(0, 8),
                         [](const auto& p) { return std::string(kNumberFields[p.param]); });

TEST_F(ViewPalette, PopUpsAndColourWellSetTheirFlagsAndColour) {
  show();
  chooseItem(popUp(win, "trackball"), "trackballfalse");
  chooseItem(popUp(win, "gridenable"), "gridfalse");
  chooseItem(popUp(win, "traceenable"), "tracefalse");
  chooseItem(popUp(win, "vectors"), "vfalse");
  chooseItem(popUp(win, "tracesrelative"), "tracescom");
  EXPECT_EQ(view.traceReference, TraceReference::CenterOfMass);
  chooseItem(popUp(win, "tracesrelative"), "tracestrackedbody");
  EXPECT_EQ(view.traceReference, TraceReference::TrackedBody);
  EXPECT_FALSE(view.trackballEnabled);
  EXPECT_FALSE(view.gridlineEnabled);
  EXPECT_FALSE(view.showTraceLines);
  EXPECT_FALSE(view.showVectors);

  dialogs.color = QColor(255, 0, 51);
  QTest::mouseClick(win->findChild<ColorWell*>(QStringLiteral("gridcolor")), Qt::LeftButton);
  EXPECT_EQ(view.gridlineColor[0], 1.0f);
  EXPECT_EQ(view.gridlineColor[1], 0.0f);
  EXPECT_EQ(view.gridlineColor[2], 0.2f);
}

TEST_F(ViewPalette, DisablingEmptiesEveryControlAndNoViewLeavesThemAlone) {
  show();
  palette.setCEnabled(false);
  host.view = nullptr;
  ASSERT_TRUE(waitForRefreshes(palette));
  // Nineteen for the camera and display settings, the choice of trace
  // reference and two for predicted paths.
  EXPECT_EQ(expectEmptyAndDisabled(win), 22);

  // A commit without a main view does nothing at all.
  palette.setCEnabled(true);
  enter(f("cx"), QStringLiteral("5"));
  EXPECT_EQ(view.cameraPosition.x, 0.0);

  host.view = &view;
  palette.getValues();
  EXPECT_EQ(f("cz")->text(), QStringLiteral("400"));
}

class ViewBadInput : public ViewPalette, public testing::WithParamInterface<const char*> {};

TEST_P(ViewBadInput, IsTakenWithoutHarm) {
  show();
  const QString text = QString::fromUtf8(GetParam());
  for (const char* name : {"cx", "cy", "cz", "fx", "fy", "fz", "tr", "tp", "ty", "autodistance",
                           "gridspacing", "bodytotrack", "name"})
    enter(f(name), text);
  EXPECT_EQ(std::signbit(view.cameraFocus.z), text == QStringLiteral("-0"));
}

INSTANTIATE_TEST_SUITE_P(Texts, ViewBadInput,
                         testing::Values("letters", "", "1e400", "-0", "NaN", "1e-400"),
                         [](const auto& p) { return textCaseName(p.param, p); });

}  // namespace
