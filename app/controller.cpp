#include "controller.h"

#include <QApplication>
#include <QGuiApplication>
#include <QScreen>
#include <QTimer>
#include <chrono>
#include <cmath>

#include "document/world_document.h"
#include "engine/world.h"
#include "opengl_check.h"
#include "orrenvale_gl_window_controller.h"
#include "palettes/body_window_controller.h"
#include "palettes/panels.h"
#include "palettes/simulation_window_controller.h"
#include "palettes/text_output_controller.h"
#include "palettes/view_window_controller.h"
#include "splash_window.h"
#include "text_field_keys.h"
#include "view/orrenvale_gl.h"

namespace {

Controller* gController = nullptr;

// 0.2 s formed in single precision; Qt timers count whole milliseconds.
constexpr std::chrono::milliseconds kAccelerationInterval{200};

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

}  // namespace

Controller::Controller() {
  gController = this;
  setViewHost(this);
  setPaletteHost(this);
  setBodyObserver(this);

  // Every window carries its own menu bar, as the views' key commands and
  // the Simulation palette expect; a desktop's global menu is not used.
  QApplication::setAttribute(Qt::AA_DontUseNativeMenuBar);

  // init
  w = new World;
  buildMenus();
  viewPalette_ = std::make_unique<ViewWindowController>();
  bodyPalette_ = std::make_unique<BodyWindowController>();
  simPalette_ = std::make_unique<SimulationWindowController>();
  textPalette_ = std::make_unique<TextOutputController>();
  placePalette(viewPalette_->window(), 4, 0);
  placePalette(bodyPalette_->window(), 34, 25);
  placePalette(simPalette_->window(), 64, 50);

  new TextFieldKeys(this);

  // awakeFromNib
  accelerationTimer_ = new QTimer(this);
  accelerationTimer_->setInterval(kAccelerationInterval);
  connect(accelerationTimer_, &QTimer::timeout, this, &Controller::getAccelerations);
  accelerationTimer_->start();
  setUpViewMenu();
}

Controller::~Controller() {
  accelerationTimer_->stop();
  // The bodies' destructors would report to the menus; they go silently.
  setBodyObserver(nullptr);
  if (running_) {
    discardUpdateTimer();
  }
  for (OrrenvaleGLWindowController* window : std::vector(viewWindows_)) {
    delete window;
  }
  viewWindows_.clear();
  deleteClosedWindows();
  mainWindow_ = nullptr;
  delete splash_.data();
  simPalette_.reset();
  viewPalette_.reset();
  bodyPalette_.reset();
  textPalette_.reset();
  delete w;
  setViewHost(nullptr);
  setPaletteHost(nullptr);
  delete menuOwner_;
  gController = nullptr;
}

Controller* Controller::instance() {
  return gController;
}

SplashWindow* Controller::splashWindow() const {
  return splash_.data();
}

bool Controller::applicationDidFinishLaunching() {
  if (!openGLIsUsable()) {
    panels()->alert(nullptr, "Invalid OpenGL Version Detected",
                    "Sorry, you must have OpenGL 1.1 or newer with GLU to run Orrenvale.");
    return false;
  }
  splash_ = new SplashWindow;
  // The splash is active at start-up; the menus' keys work there too.
  for (QAction* item : commandItems()) {
    splash_->addAction(item);
  }
  showViewPaletteFromMenu(nullptr);
  showBodyPaletteFromMenu(nullptr);
  showSimulationPaletteFromMenu(nullptr);
  setPanType(menuViewXY);
  newProgram();
  splash_->show();
  splash_->raise();
  splash_->activateWindow();
  return true;
}

bool Controller::eventLoopIsBlocked() {
  return QApplication::activeModalWidget() != nullptr ||
         QApplication::activePopupWidget() != nullptr;
}

void Controller::setWorldSpeed(float millisecondsPerUpdate) {
  w->millisecondsPerUpdate = boundedWorldSpeed(millisecondsPerUpdate);
  if (running_) {
    setUpdateTimerWithSpeed(w->millisecondsPerUpdate);
  }
}

void Controller::setUpdateTimerWithSpeed(float millisecondsPerUpdate) {
  if (running_) {
    discardUpdateTimer();
    setUpdateTimerWithSpeed(millisecondsPerUpdate);
    return;
  }
  // The interval is ms / 1000 s in single precision; Qt timers count whole
  // milliseconds, so it is rounded to the nearest one. Anything below half a
  // millisecond (0 included) fires as fast as the event loop allows.
  const float seconds = millisecondsPerUpdate / 1000.0f;
  const double ms = std::nearbyint(static_cast<double>(seconds) * 1000.0);
  updateTimer_ = new QTimer(this);
  updateTimer_->setObjectName("updateTimer");
  updateTimer_->setTimerType(Qt::PreciseTimer);
  updateTimer_->setInterval(ms > 0.0 && ms < 2147483647.0 ? static_cast<int>(ms) : 0);
  connect(updateTimer_, &QTimer::timeout, this, &Controller::timerUpdate);
  updateTimer_->start();
  running_ = true;
}

void Controller::timerUpdate() {
  if (eventLoopIsBlocked()) {
    return;
  }
  stepSim(nullptr);
}

void Controller::stepSim(QObject* /*sender*/) {
  w->step();
  if (textPalette_->wantsText()) {
    textPalette_->writeLine();
  }
}

void Controller::runSim() {
  setUpdateTimerWithSpeed(w->millisecondsPerUpdate);
  menuSimStep->setEnabled(false);
  menuSimRun->setChecked(true);
  simPalette_->setControlsState();
}

void Controller::discardUpdateTimer() {
  // Stopped at once, deleted once control is back in the event loop: this
  // may run inside the timer's own timeout.
  updateTimer_->stop();
  updateTimer_->deleteLater();
  updateTimer_ = nullptr;
  running_ = false;
}

void Controller::stopSim() {
  if (running_) {
    discardUpdateTimer();
  }
  // Step stays disabled in design mode: a new body added while designing
  // stops the clock but must not offer Step there.
  menuSimStep->setEnabled(!editing_);
  menuSimRun->setChecked(false);
  simPalette_->setControlsState();
}

void Controller::toggleSim(QObject* /*sender*/) {
  if (running_) {
    stopSim();
  } else {
    runSim();
  }
}

void Controller::getAccelerations() {
  if (running_ || eventLoopIsBlocked()) {
    return;
  }
  w->computeAccelerations();
}
