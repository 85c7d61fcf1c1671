#include "palettes/palette_window.h"

#include <QCloseEvent>
#include <QLayout>
#include <QMenuBar>
#include <QVBoxLayout>

#include "palettes/palette_host.h"

PaletteWindow::PaletteWindow(const QString& objectName, const QString& title) {
  setObjectName(objectName);
  setWindowTitle(title);
  setWindowFlags(Qt::Tool | Qt::WindowStaysOnTopHint);
  layout_ = new QVBoxLayout(this);
  layout_->setContentsMargins(8, 8, 8, 8);
  layout_->setSpacing(6);
  menuBar_ = new QMenuBar(this);
  menuBar_->setObjectName(QStringLiteral("menuBar"));
  layout_->setMenuBar(menuBar_);
  populateMenuBar();
}

void PaletteWindow::populateMenuBar() {
  if (!menuBarPopulated_ && paletteHost() != nullptr) {
    paletteHost()->populateMenuBar(menuBar_);
    menuBarPopulated_ = true;
  }
}

void PaletteWindow::closeAsUser() {
  if (onUserClose) {
    onUserClose();
  }
  QWidget::close();
}

void PaletteWindow::showEvent(QShowEvent* event) {
  populateMenuBar();
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
