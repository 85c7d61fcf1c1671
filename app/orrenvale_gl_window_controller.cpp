#include "orrenvale_gl_window_controller.h"

#include <QCloseEvent>
#include <QMainWindow>
#include <QMenuBar>

#include "controller.h"
#include "palettes/view_window_controller.h"
#include "view/orrenvale_gl.h"

OrrenvaleGLWindowController::OrrenvaleGLWindowController()
    : window_(new QMainWindow), view_(new OrrenvaleGL(window_)) {
  window_->setObjectName("GLWindow");
  window_->setAttribute(Qt::WA_DeleteOnClose, false);
  window_->setCentralWidget(view_);
  Controller::instance()->populateMenuBar(window_->menuBar());
  window_->installEventFilter(this);
}

OrrenvaleGLWindowController::~OrrenvaleGLWindowController() {
  delete window_;
}

void OrrenvaleGLWindowController::setContentSize(int width, int height) {
  // The menu bar sits above the drawing area inside the window.
  const int menuHeight =
      window_->menuBar()->isNativeMenuBar() ? 0 : window_->menuBar()->sizeHint().height();
  window_->resize(width, height + menuHeight);
  view_->resize(width, height);
}

void OrrenvaleGLWindowController::windowDidBecomeMain() {
  Controller* c = Controller::instance();
  c->viewPaletteController()->setCEnabled(true);
  c->togglePrintEtcEnabled(true);
  c->setBodyListEnabled(true);
}

void OrrenvaleGLWindowController::windowWillClose() {
  Controller* c = Controller::instance();
  c->viewPaletteController()->setCEnabled(false);
  c->togglePrintEtcEnabled(false);
  c->setBodyListEnabled(false);
}

bool OrrenvaleGLWindowController::eventFilter(QObject* watched, QEvent* event) {
  if (watched == window_) {
    if (event->type() == QEvent::WindowActivate && !closed_) {
      Controller::instance()->viewWindowDidBecomeMain(this);
    } else if (event->type() == QEvent::Close && !closed_) {
      closed_ = true;
      window_->hide();
      // The controller deletes this object, and the window with it, once the
      // close has been handled.
      Controller::instance()->viewWindowWillClose(this, event->spontaneous());
    }
  }
  return QObject::eventFilter(watched, event);
}
