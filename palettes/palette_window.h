#pragma once

#include <QCloseEvent>
#include <QWidget>
#include <functional>

// The floating tool window of a palette. It stays above the view windows,
// never becomes a main window, and tells its controller when the user closes
// it with the close box (a close asked for by the program is not reported:
// the program already knows).
class PaletteWindow : public QWidget {
 public:
  explicit PaletteWindow(const QString& objectName, const QString& title) {
    setObjectName(objectName);
    setWindowTitle(title);
    setWindowFlags(Qt::Tool | Qt::WindowStaysOnTopHint);
  }

  std::function<void()> onUserClose;
  std::function<void()> onDeactivate;

 protected:
  void closeEvent(QCloseEvent* event) override {
    // The window system's close (close box, window menu, shortcut) arrives as
    // a spontaneous event; QWidget::close() from the program does not.
    if (event->spontaneous() && onUserClose) {
      onUserClose();
    }
    QWidget::closeEvent(event);
  }

  void changeEvent(QEvent* event) override {
    if (event->type() == QEvent::ActivationChange && !isActiveWindow() && onDeactivate) {
      onDeactivate();
    }
    QWidget::changeEvent(event);
  }
};
