#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "document/plist_value.h"
#include "engine/body.h"
#include "palettes/palette_host.h"

class AppMenus;
class BodyWindowController;
class DesignHistory;
class GraphsWindowController;
class PathPredictor;
class OrrenvaleGL;
class PaletteController;
class OrrenvaleGLWindowController;
class Panels;
class QAction;
class QTimer;
class SimulationClock;
class SimulationWindowController;
class SplashWindow;
class TextOutputController;
class ViewWindowController;
class ViewWindowRegistry;
class World;

// The application's one central object: the host that views, palettes and
// the engine reach (through setViewHost and the body observer), and a thin
// front over the parts that do the work: the simulation clock, the registry
// of view windows and the menus. It owns the world, the design state and
// the palettes. Its operations are spread over files by subject:
// controller.cpp (life cycle, clock), palette_toggles.cpp, design_mode.cpp
// (design state and its undo history), document_commands.cpp,
// view_commands.cpp (view windows, bodies) and menu_wiring.cpp (menus).
class Controller : public QObject, public PaletteHost, public BodyObserver {
  Q_OBJECT

 public:
  // Creates the world, the design state, the palettes, the menus and the
  // clock (whose acceleration timer starts at once). dialogs: the panels
  // the program's dialogs go through.
  explicit Controller(Panels* dialogs);
  ~Controller() override;
  Controller(const Controller&) = delete;
  Controller& operator=(const Controller&) = delete;

  // Checks OpenGL, builds the splash window, shows the palettes, selects the
  // XY pan plane and starts a new program. False when the program must quit.
  bool applicationDidFinishLaunching();

  // Accessors (ViewHost and PaletteHost).
  World& world() override { return *w; }
  bool running() const override;
  bool editing() const override { return editing_; }
  int panType() const override { return panType_; }
  Panels* panels() override { return panels_; }
  SimulationWindowController* simulationPaletteController() const { return simPalette_.get(); }
  ViewWindowController* viewPaletteController() const { return viewPalette_.get(); }
  BodyWindowController* bodyPaletteController() const { return bodyPalette_.get(); }
  TextOutputController* textPaletteController() const { return textPalette_.get(); }
  GraphsWindowController* graphsPaletteController() const { return graphsPalette_.get(); }
  const PlistDict& editState() const { return editState_; }
  // A palette is shown exactly while its menu item is checked.
  bool simPaletteVisible() const;
  bool viewPaletteVisible() const;
  bool bodyPaletteVisible() const;
  bool textPaletteVisible() const;
  bool graphsPaletteVisible() const;
  QTimer* updateTimer() const;
  SplashWindow* splashWindow() const;
  AppMenus& menus() const { return *menus_; }
  // The menu item with the given name (menuSimRun, menuBody, ...), or null.
  QAction* menuItem(const QString& name) const;
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

  // Edits of the design, through its undo history (recorded in design mode
  // only), and the paths predicted for it.
  void deleteBody(int32_t id) override;
  void bodyDragged(const BodyDrag& drag) override;
  const PredictedPaths* predictedPaths(double horizon) override;
  void commitBodyEdit(Body& body, const std::function<void()>& apply) override;
  void commitWorldEdit(const std::function<void()>& apply) override;
  DesignHistory& history() const { return *history_; }
  PathPredictor& predictor() const { return *predictor_; }

  // Body menu callbacks.
  void worldCreateBody(Body& body) override;
  void worldDeleteBody(Body& body) override;
  void worldRenameBody(Body* body, std::string_view newName) override;

  // Palette toggles.
  void showSimulationPaletteFromMenu(QObject* sender) override;
  void showViewPaletteFromMenu(QObject* sender) override;
  void showBodyPaletteFromMenu(QObject* sender) override;
  void showOutputPaletteFromMenu(QObject* sender) override;
  void showGraphsPaletteFromMenu(QObject* sender) override;

  // The main view window: the view window activated last, or null.
  OrrenvaleGLWindowController* mainWindowController() const;
  View* currentView() override;
  QWidget* currentViewWindow() override;
  OrrenvaleGL* currentGLView() const;
  // Open view windows, oldest first.
  const std::vector<OrrenvaleGLWindowController*>& viewWindows() const;
  ViewWindowRegistry& viewWindowRegistry() const { return *windows_; }
  void populateMenuBar(QMenuBar* bar) override;

 private:
  // Connects every command item of the menus to its operation.
  void connectMenus();
  // The menus' simulation items as the clock and design mode require.
  void showSimulationState();
  // Once control is back in the event loop: when no view window and no
  // palette is left on screen, quit if the user closed the last window,
  // otherwise show the Simulation palette so the menus stay reachable.
  void checkWindowsLeft(bool closedByUser);
  // Loads editState into the world, reopening the design's view windows
  // where they were when they closed.
  void loadDesignState();
  // Hides a shown palette or shows a hidden one; its menu item's check mark
  // is its visibility. The visibility calls are empty for the text log.
  void togglePalette(QObject* sender, QObject* palette, QWidget* window, QAction* item,
                     const std::function<void()>& becomeVisible,
                     const std::function<void()>& becomeInvisible);
  void toggleRefreshingPalette(QObject* sender, PaletteController& palette, QAction* item);

  World* w = nullptr;
  Panels* panels_;
  bool editing_ = false;
  PlistDict editState_;
  int panType_ = kPanTypeXY;
  bool loadingDesign_ = false;

  std::unique_ptr<AppMenus> menus_;
  std::unique_ptr<DesignHistory> history_;
  std::unique_ptr<PathPredictor> predictor_;
  std::unique_ptr<SimulationWindowController> simPalette_;
  std::unique_ptr<ViewWindowController> viewPalette_;
  std::unique_ptr<BodyWindowController> bodyPalette_;
  std::unique_ptr<TextOutputController> textPalette_;
  std::unique_ptr<GraphsWindowController> graphsPalette_;
  std::unique_ptr<SimulationClock> clock_;
  std::unique_ptr<ViewWindowRegistry> windows_;
  QPointer<SplashWindow> splash_;
};
