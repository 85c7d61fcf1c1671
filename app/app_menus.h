#pragma once

#include <QKeySequence>
#include <QList>
#include <QObject>
#include <QString>
#include <span>
#include <vector>

class AppMenus;
class OrrenvaleGL;
class QAction;
class QMenu;
class QMenuBar;
class QWidget;

// One of the nine view commands: its item, the item's name and title, its
// keys, and the operation it runs on the current view.
struct ViewCommand {
  QAction* AppMenus::*item;
  const char* name;
  const char* title;
  QList<QKeySequence> keys;
  void (OrrenvaleGL::*run)();
};

// The view commands in the order of the View menu.
std::span<const ViewCommand> viewCommands();

// The application's one set of menus, shown in the menu bar of every window:
// their items with titles, key equivalents, enabled states and check marks,
// and the Body menu's item per body. It holds no state of its own beyond the
// items: what is checked or enabled is set from the clock, design mode, the
// main window and the palettes by the operations below, and the Controller
// connects each item to its command.
class AppMenus : public QObject {
  Q_OBJECT

 public:
  explicit AppMenus(QObject* parent = nullptr);
  ~AppMenus() override;
  AppMenus(const AppMenus&) = delete;
  AppMenus& operator=(const AppMenus&) = delete;

  // Adds the menus to a window's menu bar.
  void populateMenuBar(QMenuBar* bar) const;
  // The item with the given name (menuSimRun, menuBody, ...), or null.
  QAction* item(const QString& name) const;
  // Every command item (not the body items), for a window that takes the
  // menus' keys without showing a menu bar.
  std::vector<QAction*> commandItems() const;

  // The key equivalents of the nine view commands (Ctrl + backspace, arrows,
  // brackets, = and -), with the extra zoom keys Linux users expect.
  void setUpViewMenu();
  // Run, Step, Design Mode, Edit Current and Revert as the clock and design
  // mode require: Run is checked while running and disabled in design mode;
  // Step only while stopped outside design mode; Design Mode is checked in
  // it; Edit Current and Revert only outside it.
  void showSimulationState(bool running, bool editing);
  // The items that need a main view window (print, the exports, pan, zoom,
  // select and delete).
  void togglePrintEtcEnabled(bool enabled);
  // Checks the pan plane item that matches the code and no other.
  void showPanType(int panType);
  // The pan plane code of one of the three plane items, or 0.
  int panTypeOf(const QAction* item) const;

  // The Body menu: one item per body, titled with its name.
  QAction* addBodyItem(const QString& name);
  // The first body item with the title, or null.
  QAction* findBodyItem(const QString& name) const;
  std::vector<QAction*> bodyItems() const;
  void setBodyListEnabled(bool enabled);
  static QString bodyItemTitle(const QAction* item);
  static void setBodyItemTitle(QAction* item, const QString& title);

  // The named items the Controller refers to.
  QAction* menuFileNew = nullptr;
  QAction* menuFileOpen = nullptr;
  QAction* menuFileSave = nullptr;
  QAction* menuFileCloseWindow = nullptr;
  QAction* menuFileQuit = nullptr;
  QAction* menuBodyCreateBody = nullptr;
  QAction* menuBodyDeleteBody = nullptr;
  QAction* menuBodyInfoPalette = nullptr;
  QAction* menuSimPalette = nullptr;
  QAction* menuSimRun = nullptr;
  QAction* menuSimStep = nullptr;
  QAction* menuViewNewView = nullptr;
  QAction* menuViewPalette = nullptr;
  QAction* menuBodyDeleteAllBodies = nullptr;
  QAction* menuSimEditCurrent = nullptr;
  QAction* menuSimEdit = nullptr;
  QAction* menuSimRevert = nullptr;
  QAction* menuSimReset = nullptr;
  QAction* menuSimOutput = nullptr;
  QAction* menuSimGraphs = nullptr;
  QAction* menuViewXY = nullptr;
  QAction* menuViewXZ = nullptr;
  QAction* menuViewYZ = nullptr;
  QAction* menuFilePrint = nullptr;
  QAction* menuViewTIFF = nullptr;
  QAction* menuFileMovie = nullptr;
  QAction* menuHelpAbout = nullptr;
  QAction* menuHelpManual = nullptr;
  QAction* menuDeleteThis = nullptr;
  QAction* menuPanDown = nullptr;
  QAction* menuPanLeft = nullptr;
  QAction* menuPanRight = nullptr;
  QAction* menuPanUp = nullptr;
  QAction* menuSelectNext = nullptr;
  QAction* menuSelectPrev = nullptr;
  QAction* menuZin = nullptr;
  QAction* menuZout = nullptr;
  QAction* menuBodySpacer = nullptr;
  QAction* menuBody = nullptr;

  // Adds a menu of the application at a place in the menu bar (Edit after
  // File); the menus own it.
  QMenu* addMenu(const QString& title, std::size_t position);

  // The menus, in menu-bar order.
  std::vector<QMenu*> menus;

 private:
  // Parent of the menus, which every window's menu bar shows; never shown.
  QWidget* owner_;
  QMenu* bodyMenu_ = nullptr;
};
