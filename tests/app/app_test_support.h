#pragma once

#include <QAction>
#include <QApplication>
#include <QMainWindow>
#include <QTest>
#include <QTimer>
#include <memory>

#include "app/app_menus.h"
#include "app/controller.h"
#include "app/design_history.h"
#include "app/movie_recorder.h"
#include "app/orrenvale_gl_window_controller.h"
#include "app/simulation_clock.h"
#include "app/view_window_registry.h"
#include "engine/world.h"
#include "palettes/body_window_controller.h"
#include "palettes/simulation_window_controller.h"
#include "palettes/text_output_controller.h"
#include "palettes/view_window_controller.h"
#include "tests/palettes/scripted_panels.h"
#include "view/trackball.h"
#include "view/view.h"
#include "view/view_host.h"

// A started application: the controller after its launch, its dialogs
// answered by PanelsType. Deleted windows are flushed before and after each
// test.
template <typename PanelsType>
class StartedApp : public ::testing::Test {
 protected:
  void SetUp() override {
    controller = std::make_unique<Controller>(&panels);
    ASSERT_TRUE(controller->applicationDidFinishLaunching());
    flush();
  }
  void TearDown() override {
    controller.reset();
    flush();
  }

  // Lets deferred deletions and queued events run.
  static void flush() {
    for (int i = 0; i < 3; ++i) {
      QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
      QCoreApplication::processEvents();
    }
  }

  QAction* item(const char* name) const { return controller->menus().item(name); }
  World& world() const { return controller->world(); }
  std::vector<QString> bodyMenuTitles() const {
    std::vector<QString> titles;
    for (QAction* a : controller->menus().bodyItems())
      titles.push_back(a->data().toString());
    return titles;
  }
  int viewWindowCount() const { return static_cast<int>(controller->windows().windows().size()); }
  QString mainWindowTitle() const {
    return controller->windows().mainWindow() != nullptr
               ? controller->windows().mainWindow()->window()->windowTitle()
               : QString();
  }
  // Waits until the main view has drawn a frame at its drawing area's
  // size (a frame records the size in the view's trackball).
  bool waitForFrameOfSize(int width, int height) const {
    const View* v = controller->currentView();
    return QTest::qWaitFor(
        [&] { return v->trackball->width == width && v->trackball->height == height; }, 5000);
  }

  PanelsType panels;
  std::unique_ptr<Controller> controller;
};

// The application with scripted dialogs.
using AppTest = StartedApp<ScriptedPanels>;
