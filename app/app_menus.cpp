#include "app_menus.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QWidget>
#include <algorithm>

#include "view/orrenvale_gl.h"
#include "view/view_host.h"

namespace {

QAction* addItem(QMenu* menu, const char* name, const QString& title,
                 const QKeySequence& key = QKeySequence()) {
  QAction* item = menu->addAction(title);
  item->setObjectName(QString::fromLatin1(name));
  item->setShortcut(key);
  return item;
}

QAction* addCheckItem(QMenu* menu, const char* name, const QString& title) {
  QAction* item = addItem(menu, name, title);
  item->setCheckable(true);
  return item;
}

}  // namespace

std::span<const ViewCommand> viewCommands() {
  // Ctrl+= comes first and is the one the menu shows; Ctrl++ and the
  // keypad's keys are what users of other programs reach for as well.
  static const ViewCommand commands[] = {
      {&AppMenus::menuPanUp,
       "menuPanUp",
       "Pan &Up",
       {QKeySequence(Qt::CTRL | Qt::Key_Up)},
       &OrrenvaleGL::keyPanUp},
      {&AppMenus::menuPanDown,
       "menuPanDown",
       "Pan &Down",
       {QKeySequence(Qt::CTRL | Qt::Key_Down)},
       &OrrenvaleGL::keyPanDown},
      {&AppMenus::menuPanLeft,
       "menuPanLeft",
       "Pan &Left",
       {QKeySequence(Qt::CTRL | Qt::Key_Left)},
       &OrrenvaleGL::keyPanLeft},
      {&AppMenus::menuPanRight,
       "menuPanRight",
       "Pan &Right",
       {QKeySequence(Qt::CTRL | Qt::Key_Right)},
       &OrrenvaleGL::keyPanRight},
      {&AppMenus::menuZin,
       "menuZin",
       "Zoom &In",
       {QKeySequence(Qt::CTRL | Qt::Key_Equal), QKeySequence(Qt::CTRL | Qt::Key_Plus),
        QKeySequence(Qt::ControlModifier | Qt::KeypadModifier | Qt::Key_Plus)},
       &OrrenvaleGL::keyZoomIn},
      {&AppMenus::menuZout,
       "menuZout",
       "Zoom &Out",
       {QKeySequence(Qt::CTRL | Qt::Key_Minus),
        QKeySequence(Qt::ControlModifier | Qt::KeypadModifier | Qt::Key_Minus)},
       &OrrenvaleGL::keyZoomOut},
      {&AppMenus::menuSelectNext,
       "menuSelectNext",
       "Select Ne&xt Body",
       {QKeySequence(Qt::CTRL | Qt::Key_BracketRight)},
       &OrrenvaleGL::keySelectNext},
      {&AppMenus::menuSelectPrev,
       "menuSelectPrev",
       "Select Pre&vious Body",
       {QKeySequence(Qt::CTRL | Qt::Key_BracketLeft)},
       &OrrenvaleGL::keySelectPrev},
      {&AppMenus::menuDeleteThis,
       "menuDeleteThis",
       "Delete Selected &Body",
       {QKeySequence(Qt::CTRL | Qt::Key_Backspace)},
       &OrrenvaleGL::keyDelete},
  };
  return commands;
}

AppMenus::AppMenus(QObject* parent) : QObject(parent), owner_(new QWidget) {
  auto* file = new QMenu("&File", owner_);
  auto* sim = new QMenu("&Simulation", owner_);
  auto* view = new QMenu("&View", owner_);
  bodyMenu_ = new QMenu("&Body", owner_);
  menus = {file, sim, view, bodyMenu_};

  // The keys Linux programs use for these commands; none of them is one of
  // the view commands' keys.
  menuFileNew = addItem(file, "menuFileNew", "&New", QKeySequence(Qt::CTRL | Qt::Key_N));
  menuFileOpen = addItem(file, "menuFileOpen", "&Open...", QKeySequence(Qt::CTRL | Qt::Key_O));
  menuFileSave = addItem(file, "menuFileSave", "&Save...", QKeySequence(Qt::CTRL | Qt::Key_S));
  file->addSeparator();
  menuFilePrint =
      addItem(file, "menuFilePrint", "&Print View...", QKeySequence(Qt::CTRL | Qt::Key_P));
  menuFileMovie = addItem(file, "menuFileMovie", "Export View as &Movie...");
  file->addSeparator();
  menuFileCloseWindow =
      addItem(file, "menuFileCloseWindow", "&Close Window", QKeySequence(Qt::CTRL | Qt::Key_W));
  menuFileQuit = addItem(file, "menuFileQuit", "&Quit", QKeySequence(Qt::CTRL | Qt::Key_Q));

  menuSimRun = addCheckItem(sim, "menuSimRun", "&Run");
  menuSimStep = addItem(sim, "menuSimStep", "S&tep");
  sim->addSeparator();
  menuSimEdit = addCheckItem(sim, "menuSimEdit", "&Design Mode");
  menuSimEditCurrent = addItem(sim, "menuSimEditCurrent", "&Edit Current State");
  menuSimRevert = addItem(sim, "menuSimRevert", "Re&vert to Design");
  menuSimReset = addItem(sim, "menuSimReset", "Re&set");
  sim->addSeparator();
  menuSimPalette = addCheckItem(sim, "menuSimPalette", "Simulation &Palette");
  menuSimOutput = addCheckItem(sim, "menuSimOutput", "Text &Output");
  menuSimGraphs = addCheckItem(sim, "menuSimGraphs", "&Graphs");

  menuViewNewView = addItem(view, "menuViewNewView", "&New View");
  menuViewPalette = addCheckItem(view, "menuViewPalette", "View &Palette");
  view->addSeparator();
  menuViewXY = addCheckItem(view, "menuViewXY", "Pan in &XY");
  menuViewXZ = addCheckItem(view, "menuViewXZ", "Pan in X&Z");
  menuViewYZ = addCheckItem(view, "menuViewYZ", "Pan in &YZ");
  view->addSeparator();
  for (const ViewCommand& c : viewCommands()) {
    this->*c.item = addItem(view, c.name, c.title);
  }
  view->addSeparator();
  menuViewTIFF = addItem(view, "menuViewTIFF", "&Export View to TIFF...");

  menuBodyCreateBody = addItem(bodyMenu_, "menuBodyCreateBody", "&New Body");
  menuBodyDeleteBody = addItem(bodyMenu_, "menuBodyDeleteBody", "&Delete Body");
  menuBodyDeleteAllBodies = addItem(bodyMenu_, "menuBodyDeleteAllBodies", "Delete &All Bodies");
  menuBodyInfoPalette = addCheckItem(bodyMenu_, "menuBodyInfoPalette", "Body &Palette");
  menuBodySpacer = bodyMenu_->addSeparator();
  menuBodySpacer->setObjectName("menuBodySpacer");
  menuBody = bodyMenu_->menuAction();
  menuBody->setObjectName("menuBody");

  auto* help = new QMenu("&Help", owner_);
  menus.push_back(help);
  menuHelpAbout = addItem(help, "menuHelpAbout", "&About Orrenvale");
  menuHelpManual = addItem(help, "menuHelpManual", "Orrenvale &Help", QKeySequence::HelpContents);

  // No view window is main yet.
  togglePrintEtcEnabled(false);
}

AppMenus::~AppMenus() {
  delete owner_;
}

QMenu* AppMenus::addMenu(const QString& title, std::size_t position) {
  auto* menu = new QMenu(title, owner_);
  menus.insert(menus.begin() + static_cast<std::ptrdiff_t>(std::min(position, menus.size())), menu);
  return menu;
}

void AppMenus::populateMenuBar(QMenuBar* bar) const {
  for (QMenu* menu : menus) {
    bar->addMenu(menu);
  }
}

QAction* AppMenus::item(const QString& name) const {
  for (QMenu* menu : menus) {
    if (menu->menuAction()->objectName() == name) {
      return menu->menuAction();
    }
    for (QAction* action : menu->actions()) {
      if (action->objectName() == name) {
        return action;
      }
    }
  }
  return nullptr;
}

std::vector<QAction*> AppMenus::commandItems() const {
  std::vector<QAction*> items;
  for (QMenu* menu : menus) {
    for (QAction* action : menu->actions()) {
      if (!action->isSeparator() &&
          (menu != bodyMenu_ || action->objectName().startsWith("menu"))) {
        items.push_back(action);
      }
    }
  }
  return items;
}

void AppMenus::setUpViewMenu() {
  for (const ViewCommand& c : viewCommands()) {
    (this->*c.item)->setShortcuts(c.keys);
  }
}

void AppMenus::showSimulationState(bool running, bool editing) {
  menuSimRun->setEnabled(!editing);
  menuSimRun->setChecked(running);
  menuSimStep->setEnabled(!running && !editing);
  menuSimEdit->setChecked(editing);
  menuSimEditCurrent->setEnabled(!editing);
  menuSimRevert->setEnabled(!editing);
}

void AppMenus::togglePrintEtcEnabled(bool enabled) {
  for (QAction* action : {menuFilePrint, menuFileMovie, menuViewTIFF}) {
    action->setEnabled(enabled);
  }
  for (const ViewCommand& c : viewCommands()) {
    (this->*c.item)->setEnabled(enabled);
  }
}

void AppMenus::showPanType(int panType) {
  menuViewXY->setChecked(panType == kPanTypeXY);
  menuViewXZ->setChecked(panType == kPanTypeXZ);
  menuViewYZ->setChecked(panType == kPanTypeYZ);
}

int AppMenus::panTypeOf(const QAction* action) const {
  if (action == menuViewXY) {
    return kPanTypeXY;
  }
  if (action == menuViewYZ) {
    return kPanTypeYZ;
  }
  return action == menuViewXZ ? kPanTypeXZ : 0;
}

// The Body menu finds items by the body's name, kept in the item's data; the
// visible text doubles '&' so Qt shows it instead of taking it as a mnemonic.
QString AppMenus::bodyItemTitle(const QAction* action) {
  return action->data().toString();
}

void AppMenus::setBodyItemTitle(QAction* action, const QString& title) {
  action->setData(title);
  QString text = title;
  action->setText(text.replace('&', "&&"));
}

QAction* AppMenus::addBodyItem(const QString& name) {
  QAction* action = bodyMenu_->addAction(QString());
  setBodyItemTitle(action, name);
  return action;
}

QAction* AppMenus::findBodyItem(const QString& name) const {
  for (QAction* action : bodyItems()) {
    if (bodyItemTitle(action) == name) {
      return action;
    }
  }
  return nullptr;
}

std::vector<QAction*> AppMenus::bodyItems() const {
  const QList<QAction*> actions = bodyMenu_->actions();
  const qsizetype spacer = actions.indexOf(menuBodySpacer);
  return std::vector<QAction*>(actions.begin() + spacer + 1, actions.end());
}

void AppMenus::setBodyListEnabled(bool enabled) {
  for (QAction* action : bodyItems()) {
    action->setEnabled(enabled);
  }
}
