#pragma once

#include <QObject>

class OrrenvaleGL;
class QMainWindow;

// Controller of one view window: the window, its menu bar and the OrrenvaleGL
// view that fills it. It tells the application controller when its window
// becomes main and when it closes; the application controller then deletes
// it, with the window.
class OrrenvaleGLWindowController : public QObject {
  Q_OBJECT

 public:
  OrrenvaleGLWindowController();
  ~OrrenvaleGLWindowController() override;

  OrrenvaleGL* CGLview() const { return view_; }
  QMainWindow* window() const { return window_; }

  // Sets the window so that the drawing area is width x height pixels.
  void setContentSize(int width, int height);

  void windowDidBecomeMain();
  void windowWillClose();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QMainWindow* window_;
  OrrenvaleGL* view_;
  bool closed_ = false;
};
