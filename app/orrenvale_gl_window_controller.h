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
  // serial: a number that identifies the window for the program's session.
  explicit OrrenvaleGLWindowController(int serial);
  ~OrrenvaleGLWindowController() override;

  OrrenvaleGL* CGLview() const { return view_; }
  QMainWindow* window() const { return window_; }
  int serial() const { return serial_; }

  // Sets the window so that the drawing area is width x height pixels.
  void setContentSize(int width, int height);

  void windowDidBecomeMain();
  void windowWillClose();
  // Closes the window as its close box does.
  void closeAsUser();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  int serial_;
  QMainWindow* window_;
  OrrenvaleGL* view_;
  bool closed_ = false;
  bool closingAsUser_ = false;
};
