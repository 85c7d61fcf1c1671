// The Controller's life cycle and the simulation clock's commands.
#include "controller.h"

#include <QAction>
#include <QApplication>
#include <QGuiApplication>
#include <QMenu>
#include <QScreen>
#include <QTimer>

#include "app_menus.h"
#include "controller_host.h"
#include "design_history.h"
#include "document/long_step.h"
#include "document/world_document.h"
#include "engine/world.h"
#include "engine/world_fields.h"
#include "movie_recorder.h"
#include "opengl_check.h"
#include "orrenvale_gl_window_controller.h"
#include "palettes/body_window_controller.h"
#include "palettes/graphs_window_controller.h"
#include "palettes/panels.h"
#include "palettes/simulation_window_controller.h"
#include "palettes/text_output_controller.h"
#include "palettes/view_window_controller.h"
#include "simulation_clock.h"
#include "splash_window.h"
#include "text_field_keys.h"
#include "view/path_predictor.h"
#include "view_window_registry.h"

namespace {

// Places a palette's top-left corner against the top right of the screen's
// visible area; only the area's size counts, as the cascade is relative.
void placePalette(QWidget* window, int dx, int dy) {
  const QScreen* screen = QGuiApplication::primaryScreen();
  if (screen == nullptr || window == nullptr) {
    return;
  }
  const QSize area = screen->availableSize();
  window->adjustSize();
  const int w = window->frameGeometry().width();
  // The platform's y grows upwards from the bottom; here it grows downwards
  // from the top, so "H - 25" is 25 below the top edge.
  window->move(area.width() - w - dx, dy);
}

// A step that runs long (adaptive stepping refining towards its smallest
// substep can take hours) shows its progress in a modal panel whose Cancel
// takes the step back. The step's arithmetic stays on this thread; the
// panel lets the window system in between its integrations, while the
// program's own timers wait as they do for any modal dialog.
class PanelStepWatch : public LongStepWatch {
 public:
  explicit PanelStepWatch(Panels* panels) : panels_(panels) {}
  void endStep() { panel_.reset(); }

 protected:
  bool report(const StepProgress& progress, double seconds) override {
    if (panel_ == nullptr && panels_ != nullptr) {
      panel_ = panels_->openProgress(nullptr, QStringLiteral("Long Step"));
    }
    return panel_ == nullptr ||
           panel_->update(longStepFraction(progress),
                          QString::fromStdString(describeLongStep(progress, seconds)));
  }

 private:
  Panels* panels_;
  std::unique_ptr<Panels::Progress> panel_;
};

}  // namespace

Controller::Controller(Panels* dialogs)
    : panels_(dialogs),
      panType_(kPanTypeXY),
      host_(std::make_unique<ControllerHost>(*this, dialogs)) {
  setBodyObserver(this);

  // Every window carries its own menu bar, as the views' key commands and
  // the palettes expect; a desktop's global menu is not used.
  QApplication::setAttribute(Qt::AA_DontUseNativeMenuBar);

  w = new World;
  menus_ = std::make_unique<AppMenus>(this);
  movies_ = std::make_unique<MovieExport>(*dialogs);
  history_ = std::make_unique<DesignHistory>(
      *w, [this](Body* body, std::string_view name) { worldRenameBody(body, name); });
  predictor_ = std::make_unique<PathPredictor>();
  // The Edit menu, after File, before any window takes the menus.
  QMenu* editMenu = menus_->addMenu(tr("&Edit"), 1);
  editMenu->addAction(history_->undoAction());
  editMenu->addAction(history_->redoAction());
  connectMenus();
  viewPalette_ = std::make_unique<ViewWindowController>(*host_);
  bodyPalette_ = std::make_unique<BodyWindowController>(*host_);
  simPalette_ = std::make_unique<SimulationWindowController>(*host_);
  textPalette_ = std::make_unique<TextOutputController>(*host_);
  graphsPalette_ = std::make_unique<GraphsWindowController>(*host_);
  placePalette(viewPalette_->window(), 4, 0);
  placePalette(bodyPalette_->window(), 34, 25);
  placePalette(simPalette_->window(), 64, 50);
  placePalette(graphsPalette_->window(), 94, 75);
  windows_ = std::make_unique<ViewWindowRegistry>(
      *host_, ViewWindowRegistry::Hooks{
                  [this](QMenuBar* bar) { menus_->populateMenuBar(bar); },
                  [this](QWidget* window, const QString& title) {
                    setWindowTitleAndMinSize(window, title);
                  },
                  // What a view window's windowDidBecomeMain and windowWillClose send.
                  [this](bool main) {
                    viewPalette_->setCEnabled(main);
                    togglePrintEtcEnabled(main);
                    setBodyListEnabled(main);
                  },
                  [this](bool byUser) { checkWindowsLeft(byUser); }});
  new TextFieldKeys(this);

  // The acceleration timer starts at once, and the view commands take their
  // keys.
  clock_ = std::make_unique<SimulationClock>([this] { timerUpdate(); },
                                             [this] { getAccelerations(); }, this);
  setUpViewMenu();
}

Controller::~Controller() {
  // The bodies' destructors would report to the menus; they go silently.
  setBodyObserver(nullptr);
  movies_.reset();
  predictor_.reset();
  clock_.reset();
  windows_.reset();
  delete splash_.data();
  simPalette_.reset();
  viewPalette_.reset();
  bodyPalette_.reset();
  textPalette_.reset();
  graphsPalette_.reset();
  delete w;
  menus_.reset();
}

bool Controller::applicationDidFinishLaunching() {
  if (!openGLIsUsable()) {
    panels_->alert(nullptr, "Invalid OpenGL Version Detected",
                   "Sorry, you must have OpenGL 1.1 or newer with GLU to run Orrenvale.");
    return false;
  }
  splash_ = new SplashWindow;
  // The splash is active at start-up; the menus' keys work there too.
  for (QAction* item : menus_->commandItems()) {
    splash_->addAction(item);
  }
  showViewPaletteFromMenu(nullptr);
  showBodyPaletteFromMenu(nullptr);
  showSimulationPaletteFromMenu(nullptr);
  setPanType(menus_->menuViewXY);
  newProgram();
  splash_->show();
  splash_->raise();
  splash_->activateWindow();
  return true;
}

PaletteHost& Controller::host() const {
  return *host_;
}

bool Controller::running() const {
  return clock_ != nullptr && clock_->running();
}

void Controller::showSimulationState() {
  menus_->showSimulationState(running(), editing_);
  simPalette_->setControlsState();
  // Edits are recorded, and paths predicted, in design mode only.
  history_->setRecording(editing_);
  predictor_->setEnabled(editing_);
}

void Controller::setWorldSpeed(float millisecondsPerUpdate) {
  w->millisecondsPerUpdate = boundedWorldSpeed(millisecondsPerUpdate);
  if (running()) {
    setUpdateTimerWithSpeed(w->millisecondsPerUpdate);
  }
}

void Controller::setUpdateTimerWithSpeed(float millisecondsPerUpdate) {
  if (running()) {
    clock_->stop();
    setUpdateTimerWithSpeed(millisecondsPerUpdate);
    return;
  }
  clock_->start(millisecondsPerUpdate);
}

void Controller::timerUpdate() {
  stepSim();
}

void Controller::stepSim() {
  PanelStepWatch watch(panels_);
  watch.beginStep();
  const bool stepped = w->step(&watch);
  watch.endStep();
  if (!stepped) {
    // Cancelled: the world is as it was before the step, and stays so.
    stopSim();
    return;
  }
  if (textPalette_->wantsText()) {
    textPalette_->writeLine();
  }
}

void Controller::runSim() {
  setUpdateTimerWithSpeed(w->millisecondsPerUpdate);
  showSimulationState();
}

void Controller::stopSim() {
  clock_->stop();
  showSimulationState();
}

void Controller::toggleSim() {
  if (running()) {
    stopSim();
  } else {
    runSim();
  }
}

void Controller::getAccelerations() {
  if (!running()) {
    w->computeAccelerations();
  }
}

SplashWindow* Controller::splashWindow() const {
  return splash_.data();
}
