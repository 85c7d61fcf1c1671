// The design's undo history with real palettes and a real view window, wired
// as the application wires them: every edit goes through DesignHistory.
#include <gtest/gtest.h>

#include <QPushButton>

#include "app/design_history.h"
#include "document/world_document.h"
#include "palettes/body_window_controller.h"
#include "palettes/simulation_window_controller.h"
#include "tests/engine/test_support.h"
#include "tests/palettes/palette_test_support.h"
#include "tests/view/view_test_support.h"
#include "view/orrenvale_gl.h"
#include "view/view_ray.h"

namespace {

// The palettes' test host with the history wired in as the application
// wires it.
class EditHost : public PaletteTestHost {
 public:
  void newBody(QObject*) override { history.newBody(); }
  void commitBodyEdit(Body& body, const std::function<void()>& apply) override {
    history.commitBodyEdit(body, apply);
  }
  void commitWorldEdit(const std::function<void()>& apply) override {
    history.commitWorldEdit(apply);
  }
  void deleteBody(int32_t id) override { history.deleteBody(id); }
  void bodyDragged(const BodyDrag& drag) override { history.bodyDragged(drag); }

  DesignHistory history{w, [this](Body* b, std::string_view name) { worldRenameBody(b, name); }};
};

// Everything the user can edit in the world, bit for bit: the bodies' state
// in list order with their names, the identifier counter and the parameters.
std::string fingerprint(const World& w) {
  const std::vector<uint64_t> state = stateBits(w);
  std::string bytes(reinterpret_cast<const char*>(state.data()), state.size() * sizeof state[0]);
  forEachItem<Body>(*w.bodies, [&](const Body& b) { bytes.append(b.name).push_back('\0'); });
  for (double d :
       {double(w.nextBodyId), w.gravitationalConstant, w.restitution, double(w.merge),
        double(w.adaptive), double(w.millisecondsPerUpdate), double(w.traceHistoryPoints)})
    bytes.append(reinterpret_cast<const char*>(&d), sizeof d);
  return bytes + w.name;
}

class DesignHistoryTest : public ::testing::Test {
 protected:
  void SetUp() override {
    host.isEditing = true;
    host.history.setRecording(true);
    for (const char* name : {"Sun", "Earth", "Mars"}) {
      Body* b = host.w.createBody();
      copyName(b->name, name);
      b->position = Vector::of(10.0 * b->id - 1000.0, 0.1, -0.3);
      b->velocity = Vector::of(0.7, -1.0 / 3.0, 0);
    }
    earth = host.w.findBodyById(101);
    gl = std::make_unique<OrrenvaleGL>(host);
    host.view = gl->view();
    host.viewWindow = gl.get();
    gl->view()->selectedBodyID = earth->id;
    bodyPalette.becomeVisible();
    simPalette.becomeVisible();
  }

  void enter(PaletteController& palette, const char* name, const char* text) {
    ::enter(field(palette.window(), name), QString::fromLatin1(text));
  }
  void choose(PaletteController& palette, const char* name, const char* item) {
    QComboBox* p = popUp(palette.window(), name);
    p->setCurrentIndex(p->findData(QString::fromLatin1(item)));
    emit p->activated(p->currentIndex());
  }
  QString undoTitle() const { return host.history.undoAction()->text(); }
  void undo() { host.history.undoAction()->trigger(); }
  void redo() { host.history.redoAction()->trigger(); }

  EditHost host;
  Body* earth = nullptr;
  std::unique_ptr<OrrenvaleGL> gl;
  BodyWindowController bodyPalette{host};
  SimulationWindowController simPalette{host};
};

struct FieldCase {
  const char* control;
  const char* value;  // typed text, or the pop-up item to choose
  bool popUp;
  const char* title;
};

class PaletteEdit : public DesignHistoryTest, public ::testing::WithParamInterface<FieldCase> {};

TEST_P(PaletteEdit, UndoesAndRedoesToTheExactValues) {
  const FieldCase c = GetParam();
  const std::string before = fingerprint(host.w);
  c.popUp ? choose(bodyPalette, c.control, c.value) : enter(bodyPalette, c.control, c.value);
  const std::string after = fingerprint(host.w);
  ASSERT_NE(after, before);
  EXPECT_EQ(undoTitle(), QString("&Undo %1").arg(c.title));
  undo();
  EXPECT_EQ(fingerprint(host.w), before);
  EXPECT_EQ(host.history.redoAction()->text(), QString("&Redo %1").arg(c.title));
  redo();
  EXPECT_EQ(fingerprint(host.w), after);
}

INSTANTIATE_TEST_SUITE_P(
    Fields, PaletteEdit,
    ::testing::Values(FieldCase{"px", "12.5", false, "Change Position of Earth"},
                      FieldCase{"vy", "-3", false, "Change Velocity of Earth"},
                      FieldCase{"az", "7", false, "Change Acceleration of Earth"},
                      FieldCase{"mass", "5.5", false, "Change Mass of Earth"},
                      FieldCase{"radius", "2", false, "Change Radius of Earth"},
                      FieldCase{"name", "Terra", false, "Rename Earth"},
                      FieldCase{"traceenable", "tracetrue", true, "Change Trace of Earth"},
                      FieldCase{"vectorenable", "vectorfalse", true, "Change Vectors of Earth"}),
    [](const auto& p) { return std::string(p.param.control); });

TEST_F(DesignHistoryTest, ColourAndSimulationParametersUndoToo) {
  const std::string before = fingerprint(host.w);
  auto* well = bodyPalette.window()->findChild<ColorWell*>("color");
  const float green[3] = {0.1f, 0.9f, 0.3f};
  well->setComponents(green);
  emit well->colorChosen();
  EXPECT_EQ(undoTitle(), "&Undo Change Colour of Earth");
  enter(simPalette, "timestep", "0.25");
  EXPECT_EQ(undoTitle(), "&Undo Change Time Step");
  choose(simPalette, "collisiontype", "collisionelastic");
  EXPECT_EQ(undoTitle(), "&Undo Change Collision Model");
  enter(simPalette, "speed", "4");
  for (int i = 0; i < 4; ++i)
    undo();
  EXPECT_EQ(fingerprint(host.w), before);
  EXPECT_FALSE(host.history.undoAction()->isEnabled());
  EXPECT_EQ(undoTitle(), "&Undo");
}

// Consecutive commits to one field of one body are one entry; a commit back
// to the first value leaves none.
TEST_F(DesignHistoryTest, CommitsToOneFieldMergeIntoOneStep) {
  const std::string before = fingerprint(host.w);
  enter(bodyPalette, "mass", "2");
  enter(bodyPalette, "mass", "3");
  enter(bodyPalette, "px", "4");
  enter(bodyPalette, "py", "5");
  EXPECT_EQ(host.history.stack().count(), 2);
  undo();
  undo();
  EXPECT_EQ(fingerprint(host.w), before);
  enter(bodyPalette, "radius", "9");
  enter(bodyPalette, "radius", "1");
  EXPECT_EQ(host.history.stack().count(), 0);
}

// New body, the view's delete key, the palette's delete button and Delete
// all: undoing every step returns through each earlier world exactly, with
// the bodies in their places and the identifier counter as it was; redoing
// goes forward again the same way.
TEST_F(DesignHistoryTest, BodyCommandsUndoAndRedoThroughEveryState) {
  std::vector<std::string> states{fingerprint(host.w)};
  const auto record = [&] { states.push_back(fingerprint(host.w)); };
  host.newBody(nullptr);
  record();
  EXPECT_EQ(undoTitle(), "&Undo Create Body 3");
  gl->keyDelete();  // Earth, in the middle of the list
  record();
  EXPECT_EQ(undoTitle(), "&Undo Delete Earth");
  gl->view()->selectedBodyID = 100;
  bodyPalette.window()->findChild<QPushButton*>("deleteButton")->click();
  record();
  host.history.deleteAllBodies();
  record();
  EXPECT_EQ(undoTitle(), "&Undo Delete All Bodies");
  EXPECT_EQ(host.w.bodies->count(), 0);
  for (auto s = states.rbegin() + 1; s != states.rend(); ++s) {
    undo();
    EXPECT_EQ(fingerprint(host.w), *s);
  }
  for (auto s = states.begin() + 1; s != states.end(); ++s) {
    redo();
    EXPECT_EQ(fingerprint(host.w), *s);
  }
}

// Entering design mode rebuilds the world from the design state: new Body
// objects, the counter recomputed. The history still undoes the design's
// edits, by identifier.
TEST_F(DesignHistoryTest, HistorySurvivesARunAndTheRebuiltDesign) {
  const std::string original = fingerprint(host.w);
  enter(bodyPalette, "vx", "2.5");
  host.history.newBody();
  gl->keyDelete();
  const std::string designed = fingerprint(host.w);
  const PlistDict design = saveWorldToDict(host.w, DocumentSections{true, false, true});
  host.history.setRecording(false);
  for (int i = 0; i < 10; ++i)
    host.w.step();
  host.history.deleteAllBodies();  // an edit of the run, not recorded
  EXPECT_FALSE(host.history.undoAction()->isEnabled());
  LoadHooks hooks;
  hooks.renameBody = [this](Body& b, std::string_view name) { host.worldRenameBody(&b, name); };
  loadToWorldFromDict(host.w, &design, DocumentSections{true, false, true}, hooks);
  host.history.setRecording(true);
  ASSERT_EQ(fingerprint(host.w), designed);
  for (int i = 0; i < 3; ++i)
    undo();
  EXPECT_EQ(fingerprint(host.w), original);
  for (int i = 0; i < 3; ++i)
    redo();
  EXPECT_EQ(fingerprint(host.w), designed);
}

// A Shift drag of a body and one of its velocity tip are one entry each.
TEST_F(DesignHistoryTest, EachDragIsOneEntry) {
  earth->position = Vector();
  earth->radius = 20.0;
  earth->velocity = Vector::of(70, 0, 0);
  gl->resize(300, 300);
  gl->show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(gl.get()));
  gl->captureView();
  const std::string before = fingerprint(host.w);
  const auto shiftDrag = [&](const Vector& at, QPointF by) {
    const std::optional<PixelPoint> p = projectToView(*gl->view(), at);
    ASSERT_TRUE(p);
    drag(*gl, Qt::LeftButton, QPointF(p->x, p->yTop), QPointF(p->x, p->yTop) + by,
         Qt::ShiftModifier, 4);
  };
  shiftDrag(earth->position, QPointF(30, 20));
  EXPECT_EQ(undoTitle(), "&Undo Move Earth");
  shiftDrag(earth->position + earth->velocity, QPointF(0, -30));
  EXPECT_EQ(undoTitle(), "&Undo Aim Earth");
  EXPECT_EQ(host.history.stack().count(), 2);
  undo();
  undo();
  EXPECT_EQ(fingerprint(host.w), before);
}

}  // namespace
