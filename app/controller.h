#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <functional>
#include <memory>
#include <string_view>

#include "document/plist_value.h"
#include "engine/body.h"

class AppMenus;
class BodyWindowController;
class ControllerHost;
class DesignHistory;
class GraphsWindowController;
class MovieExport;
class OrrenvaleGL;
class OrrenvaleGLWindowController;
class PaletteController;
class PaletteHost;
class PathPredictor;
class Panels;
class QAction;
class SimulationClock;
class SimulationWindowController;
class SplashWindow;
class TextOutputController;
class View;
class ViewWindowController;
class ViewWindowRegistry;
class World;

// The application's one central object. It owns the world, the design state,
// the palettes and the parts that do the work: the simulation clock, the
// registry of view windows, the menus, the design's undo history, the path
// predictor and the movie export. Views and palettes reach it through the
// host it hands them (ControllerHost); the engine tells it of every body
// through the body observer. Its operations are the application's commands,
// spread over files by subject: controller.cpp (life cycle, clock),
// palette_toggles.cpp, design_mode.cpp, document_commands.cpp,
// view_commands.cpp (view windows, bodies) and menu_wiring.cpp (menus).
class Controller : public QObject, public BodyObserver {
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

  World& world() { return *w; }
  bool running() const;
  bool editing() const { return editing_; }
  int panType() const { return panType_; }
  const PlistDict& editState() const { return editState_; }
  SimulationWindowController* simulationPaletteController() const { return simPalette_.get(); }
  ViewWindowController* viewPaletteController() const { return viewPalette_.get(); }
  BodyWindowController* bodyPaletteController() const { return bodyPalette_.get(); }
  TextOutputController* textPaletteController() const { return textPalette_.get(); }
  GraphsWindowController* graphsPaletteController() const { return graphsPalette_.get(); }

  // The parts, which the menus and palettes reach as the application's.
  AppMenus& menus() const { return *menus_; }
  SimulationClock& clock() const { return *clock_; }
  ViewWindowRegistry& windows() const { return *windows_; }
  DesignHistory& history() const { return *history_; }
  PathPredictor& predictor() const { return *predictor_; }
  MovieExport& movies() const { return *movies_; }
  PaletteHost& host() const;
  SplashWindow* splashWindow() const;

  // Simulation clock.
  void setWorldSpeed(float millisecondsPerUpdate);
  void setUpdateTimerWithSpeed(float millisecondsPerUpdate);
  void timerUpdate();
  void runSim();
  void stopSim();
  void toggleSim();
  void stepSim();
  void getAccelerations();

  // Design mode.
  void edit();
  void editCurrent();
  void revertSim();
  // The Reset command: an empty design, the world's reset values and one
  // view window.
  void resetSim();
  void newProgram();
  void menuNew();

  // Datafile state.
  void saveCurrentStateToDict(PlistDict& dict, bool getBodies, bool getViews, bool getSim);
  void loadToCurrentStateFromDict(const PlistDict* dict, bool getBodies, bool getViews,
                                  bool getSim);

  // Document commands.
  void openDocumentFromMenu();
  void saveDocumentFromMenu();
  // Opens a datafile handed to the program (its command line); true once
  // the load is done, whatever the file held.
  bool openFile(const QString& path);
  void exportTIFF();
  void printScreen();

  // View windows and menus.
  void newView();
  OrrenvaleGLWindowController* newWindow();
  void setWindowTitleAndMinSize(QWidget* window, const QString& title);
  void closeAllWindows();
  void setUpViewMenu();
  void handleViewKeyCommands(QAction* sender);
  void setPanType(QAction* sender);
  void togglePrintEtcEnabled(bool enabled);
  void setBodyListEnabled(bool enabled);
  void selectBodyFromMenu(QAction* sender);
  void newBody();
  void deleteAllBodies();
  // The main view window's view, or null when no view window is main.
  OrrenvaleGL* currentGLView() const;
  View* currentView() const;

  // Body menu callbacks.
  void worldCreateBody(Body& body) override;
  void worldDeleteBody(Body& body) override;
  void worldRenameBody(Body* body, std::string_view newName);

  // Palette toggles. A palette whose window is closing passes itself as the
  // sender, so the controller does not close the window a second time.
  void showSimulationPaletteFromMenu(QObject* sender);
  void showViewPaletteFromMenu(QObject* sender);
  void showBodyPaletteFromMenu(QObject* sender);
  void showOutputPaletteFromMenu(QObject* sender);
  void showGraphsPaletteFromMenu(QObject* sender);

 private:
  // Connects every command item of the menus to its operation.
  void connectMenus();
  // The menus' simulation items as the clock and design mode require.
  void showSimulationState();
  // Clears the world, the log and the graphs and closes every view window.
  void clearEverything();
  // Before New and Open: asks whether to save the world first, and saves it
  // when asked to. False when the user cancelled.
  bool confirmSaveFirst();
  // The Delete Body item: deletes the current view's selected body, as the
  // view's delete command does.
  void deleteSelectedBody();
  // Closes the active window as its close box would: a view window closes,
  // a palette is hidden through its toggle.
  void closeActiveWindow();
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
  int panType_;
  bool loadingDesign_ = false;

  std::unique_ptr<AppMenus> menus_;
  std::unique_ptr<ControllerHost> host_;
  std::unique_ptr<DesignHistory> history_;
  std::unique_ptr<PathPredictor> predictor_;
  std::unique_ptr<MovieExport> movies_;
  std::unique_ptr<SimulationWindowController> simPalette_;
  std::unique_ptr<ViewWindowController> viewPalette_;
  std::unique_ptr<BodyWindowController> bodyPalette_;
  std::unique_ptr<TextOutputController> textPalette_;
  std::unique_ptr<GraphsWindowController> graphsPalette_;
  std::unique_ptr<SimulationClock> clock_;
  std::unique_ptr<ViewWindowRegistry> windows_;
  QPointer<SplashWindow> splash_;
};
