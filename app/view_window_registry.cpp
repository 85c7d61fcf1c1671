#include "view_window_registry.h"

#include <QMainWindow>
#include <QTimer>
#include <utility>

#include "orrenvale_gl_window_controller.h"
#include "view/orrenvale_gl.h"
#include "view/view.h"

namespace {

// Size of the drawing area of a new view window, and the step by which new
// windows cascade.
constexpr int kNewViewWidth = 480;
constexpr int kNewViewHeight = 400;
constexpr int kCascade = 24;

}  // namespace

ViewWindowRegistry::ViewWindowRegistry(ViewHost& host, Hooks hooks, QObject* parent)
    : QObject(parent), host_(host), hooks_(std::move(hooks)) {}

ViewWindowRegistry::~ViewWindowRegistry() {
  for (OrrenvaleGLWindowController* window : std::exchange(windows_, {})) {
    delete window;
  }
  deleteClosedWindows();
}

OrrenvaleGLWindowController* ViewWindowRegistry::open(std::optional<QPoint> position) {
  auto* controller = new OrrenvaleGLWindowController(nextSerial_++, *this, host_);
  hooks_.populateMenuBar(controller->window()->menuBar());
  windows_.push_back(controller);
  QMainWindow* window = controller->window();
  hooks_.setTitle(window, QString::fromUtf8(controller->CGLview()->view()->name));
  controller->setContentSize(kNewViewWidth, kNewViewHeight);
  if (position) {
    // The window's own area goes back exactly where it was; a frame
    // position would drift by the title bar's height with each reopening.
    window->setGeometry(QRect(*position, window->size()));
  } else {
    const int offset = kCascade * static_cast<int>((windows_.size() - 1) % 10);
    window->move(40 + offset, 60 + offset);
  }
  controller->CGLview()->setFocus();
  // The new window is main at once; the window system's activation, which
  // arrives later, then announces it again.
  window->show();
  window->raise();
  windowActivated(controller);
  return controller;
}

void ViewWindowRegistry::closeAll() {
  for (OrrenvaleGLWindowController* window : std::vector(windows_)) {
    window->window()->close();
  }
}

OrrenvaleGLWindowController* ViewWindowRegistry::windowOf(const QWidget* widget) const {
  for (OrrenvaleGLWindowController* window : windows_) {
    if (window->window() == widget) {
      return window;
    }
  }
  return nullptr;
}

void ViewWindowRegistry::windowActivated(OrrenvaleGLWindowController* window) {
  std::erase(activationOrder_, window);
  activationOrder_.push_back(window);
  // Activating (or clicking) the window that already is main announces it
  // again, as the desktop does when a main window is reactivated: closing
  // another view window disabled the view commands, and a main view window
  // needs them enabled.
  main_ = window;
  window->windowDidBecomeMain();
}

void ViewWindowRegistry::windowClosing(OrrenvaleGLWindowController* window, bool byUser) {
  closedAt_[window->serial()] = window->window()->geometry().topLeft();
  window->windowWillClose();
  closed_.push_back(window);
  QTimer::singleShot(0, this, &ViewWindowRegistry::deleteClosedWindows);
  std::erase(windows_, window);
  std::erase(activationOrder_, window);
  if (main_ == window) {
    main_ = nullptr;
    // As on a desktop where the next window in line becomes main: the view
    // window activated most recently before this one.
    if (!activationOrder_.empty()) {
      OrrenvaleGLWindowController* next = activationOrder_.back();
      next->window()->activateWindow();
      windowActivated(next);
    }
  }
  hooks_.windowClosed(byUser);
}

void ViewWindowRegistry::deleteClosedWindows() {
  for (OrrenvaleGLWindowController* window : std::exchange(closed_, {})) {
    delete window;
  }
}

void ViewWindowRegistry::rememberDesignWindows() {
  designWindows_.clear();
  std::unordered_map<int, QPoint> kept;
  for (OrrenvaleGLWindowController* window : windows_) {
    designWindows_.push_back(window->serial());
    if (auto at = closedAt_.find(window->serial()); at != closedAt_.end()) {
      kept.insert(*at);
    }
  }
  closedAt_ = std::move(kept);
}

std::optional<QPoint> ViewWindowRegistry::designWindowPosition(std::size_t ordinal) const {
  if (ordinal >= designWindows_.size()) {
    return std::nullopt;
  }
  const auto at = closedAt_.find(designWindows_[ordinal]);
  return at != closedAt_.end() ? std::optional<QPoint>(at->second) : std::nullopt;
}
