// View windows and the commands that act on the current view and its
// bodies.
#include <QAction>
#include <QApplication>
#include <QFontMetrics>
#include <QMainWindow>
#include <QMenuBar>
#include <algorithm>
#include <utility>

#include "app_menus.h"
#include "controller.h"
#include "design_history.h"
#include "engine/world.h"
#include "orrenvale_gl_window_controller.h"
#include "palettes/body_window_controller.h"
#include "palettes/palette_window.h"
#include "splash_window.h"
#include "view/orrenvale_gl.h"
#include "view/view.h"
#include "view_window_registry.h"
#include "window_size.h"

namespace {

// Room beside a title for the window manager's icon and buttons, which Qt
// cannot measure on Linux.
constexpr int kTitleBarButtons = 112;

}  // namespace

void Controller::newView(QObject* /*sender*/) {
  newWindow();
}

OrrenvaleGLWindowController* Controller::newWindow() {
  // A view of the design state reopens where its window was when it
  // closed; any other opens in the cascade of new windows.
  std::optional<QPoint> position;
  if (loadingDesign_) {
    position = windows_->designWindowPosition(windows_->windows().size());
  }
  return windows_->open(position);
}

void Controller::setWindowTitleAndMinSize(QWidget* window, const QString& title) {
  // Window managers draw titles in a bold font; measured so, with room for
  // the window's icon and buttons, the whole title shows. The minimum is
  // that width both ways; a view window is also wide enough for its whole
  // menu bar, which asks nothing of its height.
  QFont titleFont = window->font();
  titleFont.setBold(true);
  const int titleWidth = QFontMetrics(titleFont).horizontalAdvance(title) + kTitleBarButtons;
  int width = titleWidth;
  if (auto* main = qobject_cast<QMainWindow*>(window)) {
    width = std::max(width, main->menuBar()->sizeHint().width());
  }
  setBoundedMinimumSize(window, QSize(width, titleWidth));
  if (window->windowTitle() != title) {
    window->setWindowTitle(title);
  }
}

void Controller::closeAllWindows() {
  windows_->closeAll();
}

OrrenvaleGLWindowController* Controller::mainWindowController() const {
  return windows_->mainWindow();
}

const std::vector<OrrenvaleGLWindowController*>& Controller::viewWindows() const {
  return windows_->windows();
}

View* Controller::currentView() {
  OrrenvaleGL* view = currentGLView();
  return view != nullptr ? view->view() : nullptr;
}

QWidget* Controller::currentViewWindow() {
  OrrenvaleGLWindowController* main = mainWindowController();
  return main != nullptr ? main->window() : nullptr;
}

OrrenvaleGL* Controller::currentGLView() const {
  OrrenvaleGLWindowController* main = mainWindowController();
  return main != nullptr ? main->CGLview() : nullptr;
}

void Controller::handleViewKeyCommands(QAction* sender) {
  OrrenvaleGL* view = currentGLView();
  if (view == nullptr) {
    return;
  }
  const AppMenus& m = *menus_;
  const std::pair<QAction*, void (OrrenvaleGL::*)()> commands[] = {
      {m.menuDeleteThis, &OrrenvaleGL::keyDelete},
      {m.menuPanDown, &OrrenvaleGL::keyPanDown},
      {m.menuPanUp, &OrrenvaleGL::keyPanUp},
      {m.menuPanRight, &OrrenvaleGL::keyPanRight},
      {m.menuPanLeft, &OrrenvaleGL::keyPanLeft},
      {m.menuSelectNext, &OrrenvaleGL::keySelectNext},
      {m.menuSelectPrev, &OrrenvaleGL::keySelectPrev},
      {m.menuZin, &OrrenvaleGL::keyZoomIn},
      {m.menuZout, &OrrenvaleGL::keyZoomOut}};
  for (const auto& [item, command] : commands) {
    if (sender == item) {
      (view->*command)();
    }
  }
}

void Controller::selectBodyFromMenu(QAction* sender) {
  Body* body = w->findBodyByName(AppMenus::bodyItemTitle(sender).toStdString());
  if (body == nullptr) {
    return;
  }
  if (View* view = currentView()) {
    view->selectedBodyID = body->id;
  }
}

void Controller::newBody(QObject* /*sender*/) {
  stopSim();
  if (mainWindowController() == nullptr) {
    newView(nullptr);
  }
  View* view = currentView();
  Body* body = history_->newBody();
  if (view != nullptr) {
    view->selectedBodyID = body->id;
  }
  if (!bodyPaletteVisible()) {
    showBodyPaletteFromMenu(nullptr);
  }
  QWidget* palette = bodyPalette_->window();
  palette->raise();
  palette->activateWindow();
}

void Controller::deleteAllBodies(QObject* /*sender*/) {
  history_->deleteAllBodies();
}

void Controller::deleteSelectedBody(QObject* /*sender*/) {
  if (OrrenvaleGL* view = currentGLView()) {
    view->keyDelete();
  }
}

void Controller::closeActiveWindow(QObject* /*sender*/) {
  QWidget* active = QApplication::activeWindow();
  if (active == nullptr) {
    return;
  }
  if (OrrenvaleGLWindowController* window = windows_->windowOf(active)) {
    window->closeAsUser();
  } else if (auto* palette = dynamic_cast<PaletteWindow*>(active)) {
    palette->closeAsUser();
  } else if (active == splash_) {
    active->close();
  }
}
