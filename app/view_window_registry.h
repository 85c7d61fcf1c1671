#pragma once

#include <QObject>
#include <QPoint>
#include <functional>
#include <optional>
#include <unordered_map>
#include <vector>

class OrrenvaleGLWindowController;
class QMenuBar;
class QWidget;
class ViewHost;

// The open view windows: their order of opening and of activation, the main
// window (the view window activated last), what happens when one closes,
// and where each was when it closed, so that the windows of the design state
// reopen where they were. It owns the window controllers.
class ViewWindowRegistry : public QObject {
  Q_OBJECT

 public:
  struct Hooks {
    // Adds the application's menus to a new window's menu bar.
    std::function<void(QMenuBar*)> populateMenuBar;
    // Titles a window and sets its minimum size.
    std::function<void(QWidget*, const QString&)> setTitle;
    // A view window became main (true) or one closed (false): what the main
    // window's commands need enabled or disabled.
    std::function<void(bool)> mainWindowAnnounced;
    // A window closed; byUser when its close box (or Close Window) did it.
    std::function<void(bool byUser)> windowClosed;
  };

  // The windows' views show the host's world.
  ViewWindowRegistry(ViewHost& host, Hooks hooks, QObject* parent = nullptr);
  ~ViewWindowRegistry() override;
  ViewWindowRegistry(const ViewWindowRegistry&) = delete;
  ViewWindowRegistry& operator=(const ViewWindowRegistry&) = delete;

  // Opens and shows a view window, with its own area (inside the frame) at
  // the given screen position or, without one, in the cascade of new
  // windows; it becomes main at once.
  OrrenvaleGLWindowController* open(std::optional<QPoint> position = std::nullopt);
  // Asks every view window to close.
  void closeAll();

  // Open view windows, oldest first.
  const std::vector<OrrenvaleGLWindowController*>& windows() const { return windows_; }
  OrrenvaleGLWindowController* mainWindow() const { return main_; }
  // The open view window that is the given top-level widget, or null.
  OrrenvaleGLWindowController* windowOf(const QWidget* widget) const;

  // Called by the window controllers.
  void windowActivated(OrrenvaleGLWindowController* window);
  void announce(bool mainWindow) { hooks_.mainWindowAnnounced(mainWindow); }
  void windowClosing(OrrenvaleGLWindowController* window, bool byUser);

  // The design state's views are the windows open now, in this order; when
  // the design is loaded again its windows reopen where these were when they
  // closed (designWindowPosition).
  void rememberDesignWindows();
  // The screen position for the view of the design state at the ordinal, if
  // its window closed at a known place.
  std::optional<QPoint> designWindowPosition(std::size_t ordinal) const;

  // Deletes the controllers of closed windows; runs once control is back in
  // the event loop after a close.
  void deleteClosedWindows();

 private:
  ViewHost& host_;
  Hooks hooks_;
  int nextSerial_ = 0;
  std::vector<OrrenvaleGLWindowController*> windows_;
  // Open view windows, the one activated last at the back.
  std::vector<OrrenvaleGLWindowController*> activationOrder_;
  std::vector<OrrenvaleGLWindowController*> closed_;
  OrrenvaleGLWindowController* main_ = nullptr;
  // Every window gets a serial number; the design state's views are the
  // windows designWindows_ names, in order, and closedAt_ keeps where each
  // window was when it closed.
  std::vector<int> designWindows_;
  std::unordered_map<int, QPoint> closedAt_;
};
