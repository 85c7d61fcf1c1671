#pragma once

#include <QWidget>
#include <functional>

class QMenuBar;
class QVBoxLayout;

// The floating tool window of a palette. It stays above the view windows,
// never becomes a main window, carries the application's menu bar (so the
// menus and their keys are reachable whichever windows are open), and tells
// its controller when the user closes it with the close box or the Close
// Window command (a close asked for by the program is not reported: the
// program already knows).
class PaletteHost;

class PaletteWindow : public QWidget {
 public:
  // The window carries the host's menus.
  PaletteWindow(const QString& objectName, const QString& title, PaletteHost& host);

  // Closes the window as its close box does.
  void closeAsUser();
  // The window's layout, below its menu bar: the palette's controls go here.
  QVBoxLayout* contentLayout() const { return layout_; }

  std::function<void()> onUserClose;
  std::function<void()> onDeactivate;

 protected:
  void showEvent(QShowEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  QVBoxLayout* layout_;
  QMenuBar* menuBar_;
};
