#pragma once

#include <QObject>

class OrrenvaleGL;
class QMainWindow;
class ViewHost;
class ViewWindowRegistry;

// Controller of one view window: the window, its menu bar and the OrrenvaleGL
// view that fills it. It tells the registry of view windows when its window
// is activated and when it closes; the registry then deletes it, with the
// window.
class OrrenvaleGLWindowController : public QObject {
  Q_OBJECT

 public:
  // serial: a number that identifies the window for the program's session.
  OrrenvaleGLWindowController(int serial, ViewWindowRegistry& registry, ViewHost& host);
  ~OrrenvaleGLWindowController() override;

  OrrenvaleGL* CGLview() const { return view_; }
  QMainWindow* window() const { return window_; }
  int serial() const { return serial_; }

  // Sets the window so that the drawing area is width x height pixels,
  // within the screen.
  void setContentSize(int width, int height);

  // The window became main, or is closing: the registry passes it on to
  // what needs a main view window.
  void windowDidBecomeMain();
  void windowWillClose();
  // Closes the window as its close box does.
  void closeAsUser();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  int serial_;
  ViewWindowRegistry& registry_;
  QMainWindow* window_;
  OrrenvaleGL* view_;
  bool closed_ = false;
  bool closingAsUser_ = false;
};
