#include "orrenvale_gl_window_controller.h"

#include <QCloseEvent>
#include <QMainWindow>
#include <QMenuBar>

#include "view/orrenvale_gl.h"
#include "view_window_registry.h"
#include "window_size.h"

OrrenvaleGLWindowController::OrrenvaleGLWindowController(int serial, ViewWindowRegistry& registry,
                                                         ViewHost& host)
    : serial_(serial),
      registry_(registry),
      window_(new QMainWindow),
      view_(new OrrenvaleGL(host, window_)) {
  window_->setObjectName("GLWindow");
  window_->setAttribute(Qt::WA_DeleteOnClose, false);
  window_->setCentralWidget(view_);
  window_->installEventFilter(this);
  // A click anywhere in the window (its view or its menu bar) announces it
  // as main again, even when it is already the active window.
  view_->installEventFilter(this);
  window_->menuBar()->installEventFilter(this);
}

OrrenvaleGLWindowController::~OrrenvaleGLWindowController() {
  delete window_;
}

void OrrenvaleGLWindowController::closeAsUser() {
  closingAsUser_ = true;
  window_->close();
}

void OrrenvaleGLWindowController::setContentSize(int width, int height) {
  // The menu bar sits above the drawing area inside the window, as tall as
  // it will be at the window's new width.
  const QMenuBar* bar = window_->menuBar();
  const int menuHeight = bar->isNativeMenuBar() ? 0 : bar->heightForWidth(width);
  // A size from a datafile may be anything; the window never outgrows the
  // screen, and the view's trackball takes the size the view really gets.
  resizeWithinMinimum(window_, QSize(width, height + menuHeight));
  view_->resize(window_->width(), window_->height() - menuHeight);
  keepOnScreen(window_);
}

void OrrenvaleGLWindowController::windowDidBecomeMain() {
  registry_.announce(true);
}

void OrrenvaleGLWindowController::windowWillClose() {
  registry_.announce(false);
}

bool OrrenvaleGLWindowController::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::MouseButtonPress && !closed_) {
    registry_.windowActivated(this);
  }
  if (watched == window_) {
    if (event->type() == QEvent::WindowActivate && !closed_) {
      registry_.windowActivated(this);
    } else if (event->type() == QEvent::Close && !closed_) {
      closed_ = true;
      window_->hide();
      // The registry deletes this object, and the window with it, once the
      // close has been handled.
      registry_.windowClosing(this, event->spontaneous() || closingAsUser_);
    }
  }
  return QObject::eventFilter(watched, event);
}
