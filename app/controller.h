#pragma once

#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QString>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "document/plist_value.h"
#include "engine/body.h"
#include "palettes/palette_host.h"
#include "view/view_host.h"

class BodyWindowController;
class OrrenvaleGL;
class OrrenvaleGLWindowController;
class QAction;
class QMenu;
class QTimer;
class SimulationWindowController;
class SplashWindow;
class TextOutputController;
class ViewWindowController;
class World;

// The application's one central object. It owns the world, the design state,
// the palettes, the simulation clock and the menus, and keeps the Body menu
// in step with the engine. Views, palettes and the engine reach it only
// through the host interfaces it installs (and Controller::instance()).
class Controller : public QObject, public ViewHost, public PaletteHost, public BodyObserver {
  Q_OBJECT

 public:
  // Creates the world, the design state and the palettes, starts the
  // acceleration timer and sets up the menus.
  Controller();
  ~Controller() override;
  Controller(const Controller&) = delete;
  Controller& operator=(const Controller&) = delete;

  static Controller* instance();

  // Checks OpenGL, builds the splash window, shows the palettes, selects the
  // XY pan plane and starts a new program. False when the program must quit.
  bool applicationDidFinishLaunching();

  // Accessors (ViewHost and PaletteHost).
  World& world() override { return *w; }
  bool running() const override { return running_; }
  bool editing() const override { return editing_; }
  int panType() const override { return panType_; }
  SimulationWindowController* simulationPaletteController() const { return simPalette_.get(); }
  ViewWindowController* viewPaletteController() const { return viewPalette_.get(); }
  BodyWindowController* bodyPaletteController() const { return bodyPalette_.get(); }
  TextOutputController* textPaletteController() const { return textPalette_.get(); }
  const PlistDict& editState() const { return editState_; }
  bool simPaletteVisible() const { return simPaletteVisible_; }
  bool viewPaletteVisible() const { return viewPaletteVisible_; }
  bool bodyPaletteVisible() const { return bodyPaletteVisible_; }
  bool textPaletteVisible() const { return textPaletteVisible_; }
  QTimer* updateTimer() const { return updateTimer_; }
  SplashWindow* splashWindow() const;

  // The menu item with the given name (menuSimRun, menuBody, ...), or null.
  QAction* menuItem(const QString& name) const;
  // The Body menu's body items, after the spacer.
  std::vector<QAction*> bodyMenuItems() const;

  // Simulation clock.
  void setWorldSpeed(float millisecondsPerUpdate) override;
  void setUpdateTimerWithSpeed(float millisecondsPerUpdate);
  void timerUpdate();
  void runSim();
  void stopSim();
  void toggleSim(QObject* sender) override;
  void stepSim(QObject* sender) override;
  void getAccelerations();

  // Design mode.
  void edit(QObject* sender) override;
  void editCurrent(QObject* sender);
  void revertSim(QObject* sender);
  void resetSim(QObject* sender);
  void resetSim();
  void newProgram();
  void menuNew(QObject* sender);

  // Datafile state.
  void saveCurrentStateToDict(PlistDict& dict, bool getBodies, bool getViews, bool getSim);
  void loadToCurrentStateFromDict(const PlistDict* dict, bool getBodies, bool getViews,
                                  bool getSim);

  // Document commands.
  void openDocumentFromMenu(QObject* sender);
  void saveDocumentFromMenu(QObject* sender);
  // Opens a datafile handed to the program (its command line); true once
  // the load is done, whatever the file held.
  bool openFile(const QString& path);
  void exportTIFF(QObject* sender);
  void printScreen(QObject* sender);

  // View windows and menus.
  void newView(QObject* sender);
  OrrenvaleGLWindowController* newWindow();
  // Opens a view window as newWindow does, with its own area (inside the
  // frame) at the given screen position or, without one, in the cascade of
  // new windows.
  OrrenvaleGLWindowController* openViewWindow(std::optional<QPoint> position);
  void setWindowTitleAndMinSize(QWidget* window, const QString& title) override;
  void closeAllWindows();
  void setUpViewMenu();
  void handleViewKeyCommands(QAction* sender);
  void setPanType(QAction* sender);
  void togglePrintEtcEnabled(bool enabled);
  void setBodyListEnabled(bool enabled);
  void selectBodyFromMenu(QAction* sender);
  void newBody(QObject* sender) override;
  void deleteAllBodies(QObject* sender);
  // Deletes the current view's selected body, as the view's delete key does.
  void deleteSelectedBody(QObject* sender);
  // Closes the active window as its close box would: a view window closes,
  // a palette is hidden through its toggle.
  void closeActiveWindow(QObject* sender);
  // Every command item of the menus (not the body items), for windows that
  // take the menus' keys without showing a menu bar.
  std::vector<QAction*> commandItems() const;

  // Body menu callbacks.
  void worldCreateBody(Body& body) override;
  void worldDeleteBody(Body& body) override;
  void worldRenameBody(Body* body, std::string_view newName) override;

  // Palette toggles.
  void showSimulationPaletteFromMenu(QObject* sender) override;
  void showViewPaletteFromMenu(QObject* sender) override;
  void showBodyPaletteFromMenu(QObject* sender) override;
  void showOutputPaletteFromMenu(QObject* sender) override;

  // The main view window: the view window activated last, or null.
  OrrenvaleGLWindowController* mainWindowController() const { return mainWindow_; }
  View* currentView() override;
  QWidget* currentViewWindow() override;
  OrrenvaleGL* currentGLView() const;
  // Open view windows, oldest first.
  const std::vector<OrrenvaleGLWindowController*>& viewWindows() const { return viewWindows_; }
  void populateMenuBar(QMenuBar* bar) override;

  // Called by the view windows' controllers.
  void viewWindowDidBecomeMain(OrrenvaleGLWindowController* window);
  // byUser: closed by its close box rather than by the program.
  void viewWindowWillClose(OrrenvaleGLWindowController* window, bool byUser);

 private:
  void buildMenus();
  QAction* addItem(QMenu* menu, const char* name, const QString& title);
  void discardUpdateTimer();
  // Once control is back in the event loop: when no view window and no
  // palette is left on screen, quit if the user closed the last window,
  // otherwise show the Simulation palette so the menus stay reachable.
  void checkWindowsLeft(bool closedByUser);
  void deleteClosedWindows();
  // Loads editState into the world, reopening the design's view windows
  // where they were when they closed.
  void loadDesignState();
  // Notes which open windows the design state's views are, in order.
  void rememberDesignWindows();
  // True while a modal dialog or a menu is open: timers then do nothing.
  static bool eventLoopIsBlocked();
  // Hides a shown palette or shows a hidden one, keeping its flag and
  // check mark in step; the visibility calls are empty for the text log.
  void togglePalette(QObject* sender, QObject* palette, QWidget* window, bool& flag, QAction* item,
                     const std::function<void()>& becomeVisible,
                     const std::function<void()>& becomeInvisible);

  World* w = nullptr;
  bool simPaletteVisible_ = false;
  bool viewPaletteVisible_ = false;
  bool bodyPaletteVisible_ = false;
  bool textPaletteVisible_ = false;
  bool running_ = false;
  bool editing_ = false;
  PlistDict editState_;
  QTimer* accelerationTimer_ = nullptr;
  int panType_ = kPanTypeXY;

  // Parent of the menus, which every window's menu bar shows; never shown.
  QWidget* menuOwner_ = nullptr;
  std::vector<QMenu*> menus_;
  QMenu* bodyMenu_ = nullptr;
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
  QAction* menuViewXY = nullptr;
  QAction* menuViewXZ = nullptr;
  QAction* menuViewYZ = nullptr;
  QAction* menuFilePrint = nullptr;
  QAction* menuViewTIFF = nullptr;
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

  std::unique_ptr<SimulationWindowController> simPalette_;
  std::unique_ptr<ViewWindowController> viewPalette_;
  std::unique_ptr<BodyWindowController> bodyPalette_;
  std::unique_ptr<TextOutputController> textPalette_;
  // Exists only while running.
  QTimer* updateTimer_ = nullptr;

  std::vector<OrrenvaleGLWindowController*> viewWindows_;
  // Closed view windows, deleted once their close event has been handled.
  std::vector<OrrenvaleGLWindowController*> closedWindows_;
  // Open view windows, the one activated last at the back.
  std::vector<OrrenvaleGLWindowController*> activationOrder_;
  OrrenvaleGLWindowController* mainWindow_ = nullptr;
  // Every view window gets a serial number; the design state's views are the
  // windows designWindows_ names, in order, and closedAt_ keeps where each
  // window was when it closed, so a design-mode round trip, Revert or a save
  // of the design state reopens the windows where they were.
  int nextWindowSerial_ = 0;
  std::vector<int> designWindows_;
  std::unordered_map<int, QPoint> closedAt_;
  bool loadingDesign_ = false;
  QPointer<SplashWindow> splash_;
};
