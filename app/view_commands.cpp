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

void Controller::newView() {
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

View* Controller::currentView() const {
  OrrenvaleGL* view = currentGLView();
  return view != nullptr ? view->view() : nullptr;
}

OrrenvaleGL* Controller::currentGLView() const {
  OrrenvaleGLWindowController* main = windows_->mainWindow();
  return main != nullptr ? main->CGLview() : nullptr;
}

void Controller::handleViewKeyCommands(QAction* sender) {
  OrrenvaleGL* view = currentGLView();
  if (view == nullptr) {
    return;
  }
  for (const ViewCommand& c : viewCommands()) {
    if (sender == (*menus_).*c.item) {
      (view->*c.run)();
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

void Controller::newBody() {
  stopSim();
  if (windows_->mainWindow() == nullptr) {
    newView();
  }
  View* view = currentView();
  Body* body = history_->newBody();
  if (view != nullptr) {
    view->selectedBodyID = body->id;
  }
  if (!menus_->menuBodyInfoPalette->isChecked()) {
    showBodyPaletteFromMenu(nullptr);
  }
  QWidget* palette = bodyPalette_->window();
  palette->raise();
  palette->activateWindow();
}

void Controller::deleteAllBodies() {
  history_->deleteAllBodies();
}

void Controller::deleteSelectedBody() {
  if (OrrenvaleGL* view = currentGLView()) {
    view->keyDelete();
  }
}

void Controller::closeActiveWindow() {
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
