// The menus, the view windows and the Body menu, which follows the world's
// bodies through the engine's creation and deletion callbacks.
#include <QAction>
#include <QApplication>
#include <QFontMetrics>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QTimer>
#include <algorithm>
#include <utility>

#include "controller.h"
#include "engine/world.h"
#include "orrenvale_gl_window_controller.h"
#include "palettes/body_window_controller.h"
#include "palettes/palette_window.h"
#include "palettes/simulation_window_controller.h"
#include "palettes/text_output_controller.h"
#include "palettes/view_window_controller.h"
#include "splash_window.h"
#include "view/orrenvale_gl.h"
#include "view/view.h"
#include "window_size.h"

namespace {

// The Body menu finds items by the body's name, kept in the item's data; the
// visible text doubles '&' so Qt shows it instead of taking it as a mnemonic.
QString itemTitle(const QAction* item) {
  return item->data().toString();
}

void setItemTitle(QAction* item, const QString& title) {
  item->setData(title);
  QString text = title;
  item->setText(text.replace('&', "&&"));
}

// Room beside a title for the window manager's icon and buttons, which Qt
// cannot measure on Linux.
constexpr int kTitleBarButtons = 112;
// Size of the drawing area of a new view window, and the step by which new
// windows cascade.
constexpr int kNewViewWidth = 480;
constexpr int kNewViewHeight = 400;
constexpr int kCascade = 24;

}  // namespace

QAction* Controller::addItem(QMenu* menu, const char* name, const QString& title) {
  QAction* item = menu->addAction(title);
  item->setObjectName(name);
  return item;
}

void Controller::buildMenus() {
  menuOwner_ = new QWidget;
  auto* file = new QMenu("&File", menuOwner_);
  auto* sim = new QMenu("&Simulation", menuOwner_);
  auto* viewMenu = new QMenu("&View", menuOwner_);
  bodyMenu_ = new QMenu("&Body", menuOwner_);
  menus_ = {file, sim, viewMenu, bodyMenu_};

  // The keys Linux programs use for these commands; none of them is one of
  // the view commands' keys.
  QAction* fileNew = addItem(file, "menuFileNew", "&New");
  fileNew->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_N));
  connect(fileNew, &QAction::triggered, this, [this] { menuNew(sender()); });
  QAction* fileOpen = addItem(file, "menuFileOpen", "&Open...");
  fileOpen->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_O));
  connect(fileOpen, &QAction::triggered, this, [this] { openDocumentFromMenu(sender()); });
  QAction* fileSave = addItem(file, "menuFileSave", "&Save...");
  fileSave->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_S));
  connect(fileSave, &QAction::triggered, this, [this] { saveDocumentFromMenu(sender()); });
  file->addSeparator();
  menuFilePrint = addItem(file, "menuFilePrint", "&Print View...");
  menuFilePrint->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_P));
  connect(menuFilePrint, &QAction::triggered, this, [this] { printScreen(sender()); });
  file->addSeparator();
  QAction* close = addItem(file, "menuFileCloseWindow", "&Close Window");
  close->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_W));
  connect(close, &QAction::triggered, this, [this] { closeActiveWindow(sender()); });
  QAction* quit = addItem(file, "menuFileQuit", "&Quit");
  quit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
  connect(quit, &QAction::triggered, qApp, &QApplication::quit);

  menuSimRun = addItem(sim, "menuSimRun", "&Run");
  menuSimRun->setCheckable(true);
  connect(menuSimRun, &QAction::triggered, this, [this] {
    // Qt flips the check mark itself; the clock sets it from its own state.
    menuSimRun->setChecked(running_);
    toggleSim(menuSimRun);
  });
  menuSimStep = addItem(sim, "menuSimStep", "S&tep");
  connect(menuSimStep, &QAction::triggered, this, [this] { stepSim(menuSimStep); });
  sim->addSeparator();
  menuSimEdit = addItem(sim, "menuSimEdit", "&Design Mode");
  menuSimEdit->setCheckable(true);
  connect(menuSimEdit, &QAction::triggered, this, [this] {
    menuSimEdit->setChecked(editing_);
    edit(menuSimEdit);
  });
  menuSimEditCurrent = addItem(sim, "menuSimEditCurrent", "&Edit Current State");
  connect(menuSimEditCurrent, &QAction::triggered, this,
          [this] { editCurrent(menuSimEditCurrent); });
  menuSimRevert = addItem(sim, "menuSimRevert", "Re&vert to Design");
  connect(menuSimRevert, &QAction::triggered, this, [this] { revertSim(menuSimRevert); });
  menuSimReset = addItem(sim, "menuSimReset", "Re&set");
  connect(menuSimReset, &QAction::triggered, this, [this] { resetSim(menuSimReset); });
  sim->addSeparator();
  menuSimPalette = addItem(sim, "menuSimPalette", "Simulation &Palette");
  menuSimOutput = addItem(sim, "menuSimOutput", "Text &Output");

  menuViewNewView = addItem(viewMenu, "menuViewNewView", "&New View");
  connect(menuViewNewView, &QAction::triggered, this, [this] { newView(menuViewNewView); });
  menuViewPalette = addItem(viewMenu, "menuViewPalette", "View &Palette");
  viewMenu->addSeparator();
  menuViewXY = addItem(viewMenu, "menuViewXY", "Pan in &XY");
  menuViewXZ = addItem(viewMenu, "menuViewXZ", "Pan in X&Z");
  menuViewYZ = addItem(viewMenu, "menuViewYZ", "Pan in &YZ");
  for (QAction* plane : {menuViewXY, menuViewXZ, menuViewYZ}) {
    plane->setCheckable(true);
    connect(plane, &QAction::triggered, this, [this, plane] { setPanType(plane); });
  }
  viewMenu->addSeparator();
  menuPanUp = addItem(viewMenu, "menuPanUp", "Pan &Up");
  menuPanDown = addItem(viewMenu, "menuPanDown", "Pan &Down");
  menuPanLeft = addItem(viewMenu, "menuPanLeft", "Pan &Left");
  menuPanRight = addItem(viewMenu, "menuPanRight", "Pan &Right");
  menuZin = addItem(viewMenu, "menuZin", "Zoom &In");
  menuZout = addItem(viewMenu, "menuZout", "Zoom &Out");
  menuSelectNext = addItem(viewMenu, "menuSelectNext", "Select Ne&xt Body");
  menuSelectPrev = addItem(viewMenu, "menuSelectPrev", "Select Pre&vious Body");
  menuDeleteThis = addItem(viewMenu, "menuDeleteThis", "Delete Selected &Body");
  for (QAction* command : {menuPanUp, menuPanDown, menuPanLeft, menuPanRight, menuZin, menuZout,
                           menuSelectNext, menuSelectPrev, menuDeleteThis}) {
    connect(command, &QAction::triggered, this,
            [this, command] { handleViewKeyCommands(command); });
  }
  viewMenu->addSeparator();
  menuViewTIFF = addItem(viewMenu, "menuViewTIFF", "&Export View to TIFF...");
  connect(menuViewTIFF, &QAction::triggered, this, [this] { exportTIFF(menuViewTIFF); });

  menuBodyCreateBody = addItem(bodyMenu_, "menuBodyCreateBody", "&New Body");
  connect(menuBodyCreateBody, &QAction::triggered, this, [this] { newBody(menuBodyCreateBody); });
  // Deletes the selected body of the current view, as the view's delete
  // command does; without a main view window it does nothing.
  menuBodyDeleteBody = addItem(bodyMenu_, "menuBodyDeleteBody", "&Delete Body");
  connect(menuBodyDeleteBody, &QAction::triggered, this,
          [this] { deleteSelectedBody(menuBodyDeleteBody); });
  menuBodyDeleteAllBodies = addItem(bodyMenu_, "menuBodyDeleteAllBodies", "Delete &All Bodies");
  connect(menuBodyDeleteAllBodies, &QAction::triggered, this,
          [this] { deleteAllBodies(menuBodyDeleteAllBodies); });
  menuBodyInfoPalette = addItem(bodyMenu_, "menuBodyInfoPalette", "Body &Palette");
  menuBodySpacer = bodyMenu_->addSeparator();
  menuBodySpacer->setObjectName("menuBodySpacer");
  menuBody = bodyMenu_->menuAction();
  menuBody->setObjectName("menuBody");

  for (QAction* toggle : {menuSimPalette, menuSimOutput, menuViewPalette, menuBodyInfoPalette}) {
    toggle->setCheckable(true);
  }
  connect(menuSimPalette, &QAction::triggered, this,
          [this] { showSimulationPaletteFromMenu(menuSimPalette); });
  connect(menuSimOutput, &QAction::triggered, this,
          [this] { showOutputPaletteFromMenu(menuSimOutput); });
  connect(menuViewPalette, &QAction::triggered, this,
          [this] { showViewPaletteFromMenu(menuViewPalette); });
  connect(menuBodyInfoPalette, &QAction::triggered, this,
          [this] { showBodyPaletteFromMenu(menuBodyInfoPalette); });

  // No view window is main yet.
  togglePrintEtcEnabled(false);
}

void Controller::populateMenuBar(QMenuBar* bar) {
  for (QMenu* menu : menus_) {
    bar->addMenu(menu);
  }
}

QAction* Controller::menuItem(const QString& name) const {
  for (QMenu* menu : menus_) {
    if (menu->menuAction()->objectName() == name) {
      return menu->menuAction();
    }
    for (QAction* item : menu->actions()) {
      if (item->objectName() == name) {
        return item;
      }
    }
  }
  return nullptr;
}

std::vector<QAction*> Controller::bodyMenuItems() const {
  const QList<QAction*> items = bodyMenu_->actions();
  const qsizetype spacer = items.indexOf(menuBodySpacer);
  return std::vector<QAction*>(items.begin() + spacer + 1, items.end());
}

void Controller::setUpViewMenu() {
  menuDeleteThis->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Backspace));
  menuPanDown->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Down));
  menuPanUp->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Up));
  menuPanRight->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Right));
  menuPanLeft->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Left));
  menuSelectNext->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_BracketRight));
  menuSelectPrev->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_BracketLeft));
  // Ctrl+= comes first and is the one the menu shows; Ctrl++ and the keypad's
  // keys are what users of other programs reach for as well.
  menuZin->setShortcuts(QList<QKeySequence>{
      QKeySequence(Qt::CTRL | Qt::Key_Equal), QKeySequence(Qt::CTRL | Qt::Key_Plus),
      QKeySequence(Qt::ControlModifier | Qt::KeypadModifier | Qt::Key_Plus)});
  menuZout->setShortcuts(
      QList<QKeySequence>{QKeySequence(Qt::CTRL | Qt::Key_Minus),
                          QKeySequence(Qt::ControlModifier | Qt::KeypadModifier | Qt::Key_Minus)});
}

std::vector<QAction*> Controller::commandItems() const {
  std::vector<QAction*> items;
  for (QMenu* menu : menus_) {
    for (QAction* item : menu->actions()) {
      if (!item->isSeparator()) {
        items.push_back(item);
      }
    }
  }
  return items;
}

void Controller::closeActiveWindow(QObject* /*sender*/) {
  QWidget* active = QApplication::activeWindow();
  if (active == nullptr) {
    return;
  }
  for (OrrenvaleGLWindowController* window : viewWindows_) {
    if (window->window() == active) {
      window->closeAsUser();
      return;
    }
  }
  if (auto* palette = dynamic_cast<PaletteWindow*>(active)) {
    palette->closeAsUser();
  } else if (active == splash_) {
    active->close();
  }
}

void Controller::handleViewKeyCommands(QAction* sender) {
  OrrenvaleGL* view = currentGLView();
  if (view == nullptr) {
    return;
  }
  if (sender == menuDeleteThis) {
    view->keyDelete();
  } else if (sender == menuPanDown) {
    view->keyPanDown();
  } else if (sender == menuPanUp) {
    view->keyPanUp();
  } else if (sender == menuPanRight) {
    view->keyPanRight();
  } else if (sender == menuPanLeft) {
    view->keyPanLeft();
  } else if (sender == menuSelectNext) {
    view->keySelectNext();
  } else if (sender == menuSelectPrev) {
    view->keySelectPrev();
  } else if (sender == menuZin) {
    view->keyZoomIn();
  } else if (sender == menuZout) {
    view->keyZoomOut();
  }
}

void Controller::setPanType(QAction* sender) {
  menuViewXY->setChecked(false);
  menuViewXZ->setChecked(false);
  menuViewYZ->setChecked(false);
  if (sender == menuViewXY) {
    panType_ = kPanTypeXY;
  } else if (sender == menuViewYZ) {
    panType_ = kPanTypeYZ;
  } else if (sender == menuViewXZ) {
    panType_ = kPanTypeXZ;
  }
  if (sender != nullptr) {
    sender->setChecked(true);
  }
}

void Controller::togglePrintEtcEnabled(bool enabled) {
  for (QAction* item :
       {menuFilePrint, menuViewTIFF, menuDeleteThis, menuPanDown, menuPanLeft, menuPanRight,
        menuPanUp, menuSelectNext, menuSelectPrev, menuZin, menuZout}) {
    item->setEnabled(enabled);
  }
}

void Controller::setBodyListEnabled(bool enabled) {
  for (QAction* item : bodyMenuItems()) {
    item->setEnabled(enabled);
  }
}

void Controller::worldCreateBody(Body& body) {
  QAction* item = bodyMenu_->addAction(QString());
  setItemTitle(item, QString::fromUtf8(body.name));
  connect(item, &QAction::triggered, this, [this, item] { selectBodyFromMenu(item); });
}

void Controller::worldDeleteBody(Body& body) {
  const QString name = QString::fromUtf8(body.name);
  for (QAction* item : bodyMenuItems()) {
    if (itemTitle(item) == name) {
      // No body item is ever the action being triggered when a body goes,
      // so the item can go at once.
      delete item;
      return;
    }
  }
}

void Controller::worldRenameBody(Body* body, std::string_view newName) {
  if (body == nullptr) {
    return;
  }
  const QString name = QString::fromUtf8(body->name);
  for (QAction* item : bodyMenuItems()) {
    if (itemTitle(item) == name) {
      // The body's buffer holds 254 bytes; the item shows what the body
      // keeps, so title and name stay equal.
      copyName(body->name, newName);
      setItemTitle(item, QString::fromUtf8(body->name));
      return;
    }
  }
}

void Controller::selectBodyFromMenu(QAction* sender) {
  Body* body = w->findBodyByName(itemTitle(sender).toStdString());
  if (body == nullptr) {
    return;
  }
  if (View* view = currentView()) {
    view->selectedBodyID = body->id;
  }
}

void Controller::newBody(QObject* /*sender*/) {
  stopSim();
  if (mainWindow_ == nullptr) {
    newView(nullptr);
  }
  View* view = currentView();
  Body* body = w->createBody();
  if (view != nullptr) {
    view->selectedBodyID = body->id;
  }
  if (!bodyPaletteVisible_) {
    showBodyPaletteFromMenu(nullptr);
  }
  QWidget* palette = bodyPalette_->window();
  palette->raise();
  palette->activateWindow();
}

void Controller::deleteAllBodies(QObject* /*sender*/) {
  w->deleteAllBodies();
}

void Controller::deleteSelectedBody(QObject* /*sender*/) {
  if (OrrenvaleGL* view = currentGLView()) {
    view->keyDelete();
  }
}

void Controller::newView(QObject* /*sender*/) {
  newWindow();
}

OrrenvaleGLWindowController* Controller::newWindow() {
  return openViewWindow(std::nullopt);
}

OrrenvaleGLWindowController* Controller::openViewWindow(std::optional<QPoint> position) {
  auto* controller = new OrrenvaleGLWindowController(nextWindowSerial_++);
  viewWindows_.push_back(controller);
  QMainWindow* window = controller->window();
  setWindowTitleAndMinSize(window, QString::fromUtf8(controller->CGLview()->view()->name));
  controller->setContentSize(kNewViewWidth, kNewViewHeight);
  const int offset = kCascade * static_cast<int>((viewWindows_.size() - 1) % 10);
  if (position) {
    // The window's own area goes back exactly where it was; a frame
    // position would drift by the title bar's height with each reopening.
    window->setGeometry(QRect(*position, window->size()));
  } else {
    window->move(40 + offset, 60 + offset);
  }
  controller->CGLview()->setFocus();
  // The new window is main at once; the window system's activation, which
  // arrives later, then finds it main already.
  window->show();
  window->raise();
  viewWindowDidBecomeMain(controller);
  return controller;
}

void Controller::setWindowTitleAndMinSize(QWidget* window, const QString& title) {
  // Window managers draw titles in a bold font; measured so, with room for
  // the window's icon and buttons, the whole title shows. A view window also
  // shows its whole menu bar.
  QFont titleFont = window->font();
  titleFont.setBold(true);
  int width = QFontMetrics(titleFont).horizontalAdvance(title) + kTitleBarButtons;
  if (auto* main = qobject_cast<QMainWindow*>(window)) {
    width = std::max(width, main->menuBar()->sizeHint().width());
  }
  setBoundedMinimumSize(window, QSize(width, width));
  if (window->windowTitle() != title) {
    window->setWindowTitle(title);
  }
}

void Controller::closeAllWindows() {
  for (OrrenvaleGLWindowController* window : std::vector(viewWindows_)) {
    window->window()->close();
  }
}

void Controller::viewWindowDidBecomeMain(OrrenvaleGLWindowController* window) {
  std::erase(activationOrder_, window);
  activationOrder_.push_back(window);
  // Activating (or clicking) the window that already is main announces it
  // again, as the desktop does when a main window is reactivated: closing
  // another view window disabled the view commands, and a main view window
  // needs them enabled.
  mainWindow_ = window;
  window->windowDidBecomeMain();
}

void Controller::viewWindowWillClose(OrrenvaleGLWindowController* window, bool byUser) {
  closedAt_[window->serial()] = window->window()->geometry().topLeft();
  window->windowWillClose();
  checkWindowsLeft(byUser);
  closedWindows_.push_back(window);
  QTimer::singleShot(0, this, &Controller::deleteClosedWindows);
  std::erase(viewWindows_, window);
  std::erase(activationOrder_, window);
  if (mainWindow_ == window) {
    mainWindow_ = nullptr;
    // As on a desktop where the next window in line becomes main: the view
    // window activated most recently before this one.
    if (!activationOrder_.empty()) {
      OrrenvaleGLWindowController* next = activationOrder_.back();
      next->window()->activateWindow();
      viewWindowDidBecomeMain(next);
    }
  }
}

void Controller::deleteClosedWindows() {
  for (OrrenvaleGLWindowController* window : std::exchange(closedWindows_, {})) {
    delete window;
  }
}

void Controller::checkWindowsLeft(bool closedByUser) {
  QTimer::singleShot(0, this, [this, closedByUser] {
    const bool anyLeft = !viewWindows_.empty() || simPaletteVisible_ || viewPaletteVisible_ ||
                         bodyPaletteVisible_ || textPaletteVisible_;
    if (anyLeft) {
      return;
    }
    if (closedByUser) {
      QApplication::quit();
    } else {
      showSimulationPaletteFromMenu(nullptr);
    }
  });
}

View* Controller::currentView() {
  OrrenvaleGL* view = currentGLView();
  return view != nullptr ? view->view() : nullptr;
}

QWidget* Controller::currentViewWindow() {
  return mainWindow_ != nullptr ? mainWindow_->window() : nullptr;
}

OrrenvaleGL* Controller::currentGLView() const {
  return mainWindow_ != nullptr ? mainWindow_->CGLview() : nullptr;
}

void Controller::togglePalette(QObject* sender, QObject* palette, QWidget* window, bool& flag,
                               QAction* item, const std::function<void()>& becomeVisible,
                               const std::function<void()>& becomeInvisible) {
  if (flag) {
    if (becomeInvisible) {
      becomeInvisible();
    }
    if (sender != palette) {
      window->close();
    }
    item->setChecked(false);
    flag = false;
    // A palette passes itself when its close box closed it.
    checkWindowsLeft(sender == palette);
  } else {
    if (becomeVisible) {
      becomeVisible();
    }
    window->show();
    item->setChecked(true);
    flag = true;
  }
}

void Controller::showSimulationPaletteFromMenu(QObject* sender) {
  SimulationWindowController* p = simPalette_.get();
  togglePalette(
      sender, p, p->window(), simPaletteVisible_, menuSimPalette, [p] { p->becomeVisible(); },
      [p] { p->becomeInvisible(); });
}

void Controller::showViewPaletteFromMenu(QObject* sender) {
  ViewWindowController* p = viewPalette_.get();
  togglePalette(
      sender, p, p->window(), viewPaletteVisible_, menuViewPalette, [p] { p->becomeVisible(); },
      [p] { p->becomeInvisible(); });
}

void Controller::showBodyPaletteFromMenu(QObject* sender) {
  BodyWindowController* p = bodyPalette_.get();
  togglePalette(
      sender, p, p->window(), bodyPaletteVisible_, menuBodyInfoPalette, [p] { p->becomeVisible(); },
      [p] { p->becomeInvisible(); });
}

void Controller::showOutputPaletteFromMenu(QObject* sender) {
  // The text log has no refresh timer: only its window is shown or hidden.
  TextOutputController* p = textPalette_.get();
  togglePalette(sender, p, p->window(), textPaletteVisible_, menuSimOutput, {}, {});
}
