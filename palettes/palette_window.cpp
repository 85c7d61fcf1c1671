#include "palettes/palette_window.h"

#include <QCloseEvent>
#include <QLayout>
#include <QMenuBar>
#include <QVBoxLayout>

#include "palettes/palette_host.h"

PaletteWindow::PaletteWindow(const QString& objectName, const QString& title, PaletteHost& host) {
  setObjectName(objectName);
  setWindowTitle(title);
  setWindowFlags(Qt::Tool | Qt::WindowStaysOnTopHint);
  // The window itself holds the keyboard focus until the user clicks into
  // a field: an activated palette must not hand the menus' keys (Ctrl+=,
  // Ctrl+arrows) to a text field nobody chose. A click on the palette's
  // background takes the focus back from a field.
  setFocusPolicy(Qt::ClickFocus);
  layout_ = new QVBoxLayout(this);
  layout_->setContentsMargins(8, 8, 8, 8);
  layout_->setSpacing(6);
  menuBar_ = new QMenuBar(this);
  menuBar_->setObjectName(QStringLiteral("menuBar"));
  layout_->setMenuBar(menuBar_);
  host.populateMenuBar(menuBar_);
}

void PaletteWindow::closeAsUser() {
  if (onUserClose) {
    onUserClose();
  }
  QWidget::close();
}

void PaletteWindow::showEvent(QShowEvent* event) {
  if (focusWidget() == nullptr) {
    setFocus();
  }
  QWidget::showEvent(event);
}

void PaletteWindow::closeEvent(QCloseEvent* event) {
  // The window system's close (close box, window menu, shortcut) arrives as
  // a spontaneous event; QWidget::close() from the program does not.
  if (event->spontaneous() && onUserClose) {
    onUserClose();
  }
  QWidget::closeEvent(event);
}

void PaletteWindow::changeEvent(QEvent* event) {
  if (event->type() == QEvent::ActivationChange && !isActiveWindow() && onDeactivate) {
    onDeactivate();
  }
  QWidget::changeEvent(event);
}
