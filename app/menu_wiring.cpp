// The menus as the Controller sees them: each command item connected to its
// operation, the menu bars and the state setters the Controller offers.
#include <QAction>
#include <QApplication>
#include <QMenuBar>

#include "app_menus.h"
#include "controller.h"
#include "design_history.h"
#include "help_commands.h"
#include "movie_recorder.h"

void Controller::connectMenus() {
  AppMenus& m = *menus_;
  const auto on = [this](QAction* item, auto operation) {
    connect(item, &QAction::triggered, this, operation);
  };
  on(m.menuFileNew, &Controller::menuNew);
  on(m.menuFileOpen, &Controller::openDocumentFromMenu);
  on(m.menuFileSave, &Controller::saveDocumentFromMenu);
  on(m.menuFilePrint, &Controller::printScreen);
  on(m.menuFileCloseWindow, &Controller::closeActiveWindow);
  connect(m.menuFileQuit, &QAction::triggered, qApp, &QApplication::quit);

  // Qt flips a checkable item's mark itself; the commands set it from the
  // state they leave.
  on(m.menuSimRun, &Controller::toggleSim);
  on(m.menuSimRun, &Controller::showSimulationState);
  on(m.menuSimStep, &Controller::stepSim);
  on(m.menuSimEdit, &Controller::edit);
  on(m.menuSimEdit, &Controller::showSimulationState);
  // The current world becomes the design: the old design's history goes.
  connect(m.menuSimEditCurrent, &QAction::triggered, this, [this] {
    history_->clear();
    editCurrent();
  });
  on(m.menuSimRevert, &Controller::revertSim);
  on(m.menuSimReset, &Controller::resetSim);

  // A toggle sets its own check mark; Qt's flip is taken back first.
  const auto toggle = [this](QAction* item, void (Controller::*operation)(QObject*)) {
    connect(item, &QAction::triggered, this, [this, item, operation] {
      item->setChecked(!item->isChecked());
      (this->*operation)(item);
    });
  };
  toggle(m.menuSimPalette, &Controller::showSimulationPaletteFromMenu);
  toggle(m.menuSimOutput, &Controller::showOutputPaletteFromMenu);
  toggle(m.menuSimGraphs, &Controller::showGraphsPaletteFromMenu);
  toggle(m.menuViewPalette, &Controller::showViewPaletteFromMenu);
  toggle(m.menuBodyInfoPalette, &Controller::showBodyPaletteFromMenu);

  on(m.menuViewNewView, &Controller::newView);
  for (QAction* plane : {m.menuViewXY, m.menuViewXZ, m.menuViewYZ}) {
    connect(plane, &QAction::triggered, this, [this, plane] { setPanType(plane); });
  }
  for (const ViewCommand& c : viewCommands()) {
    QAction* item = m.*c.item;
    connect(item, &QAction::triggered, this, [this, item] { handleViewKeyCommands(item); });
  }
  on(m.menuViewTIFF, &Controller::exportTIFF);
  connect(m.menuFileMovie, &QAction::triggered, this, [this] {
    if (OrrenvaleGL* view = currentGLView()) {
      movies_->exportView(*view);
    }
  });
  connect(m.menuHelpAbout, &QAction::triggered, this, [this] { showAbout(*panels_, nullptr); });
  connect(m.menuHelpManual, &QAction::triggered, this, [this] { openHelp(*panels_); });
  on(m.menuBodyCreateBody, &Controller::newBody);
  // Deletes the selected body of the current view, as the view's delete
  // command does; without a main view window it does nothing.
  on(m.menuBodyDeleteBody, &Controller::deleteSelectedBody);
  on(m.menuBodyDeleteAllBodies, &Controller::deleteAllBodies);
}

void Controller::setUpViewMenu() {
  menus_->setUpViewMenu();
}

void Controller::setPanType(QAction* sender) {
  const int code = menus_->panTypeOf(sender);
  if (code != 0) {
    panType_ = code;
  }
  menus_->showPanType(code);
}

void Controller::togglePrintEtcEnabled(bool enabled) {
  menus_->togglePrintEtcEnabled(enabled);
}

void Controller::setBodyListEnabled(bool enabled) {
  menus_->setBodyListEnabled(enabled);
}

void Controller::worldCreateBody(Body& body) {
  QAction* item = menus_->addBodyItem(QString::fromUtf8(body.name));
  connect(item, &QAction::triggered, this, [this, item] { selectBodyFromMenu(item); });
}

void Controller::worldDeleteBody(Body& body) {
  // No body item is ever the action being triggered when a body goes, so
  // the item can go at once.
  delete menus_->findBodyItem(QString::fromUtf8(body.name));
}

void Controller::worldRenameBody(Body* body, std::string_view newName) {
  if (body == nullptr) {
    return;
  }
  QAction* item = menus_->findBodyItem(QString::fromUtf8(body->name));
  if (item == nullptr) {
    return;
  }
  // The body's buffer holds 254 bytes; the item shows what the body keeps,
  // so title and name stay equal.
  copyName(body->name, newName);
  AppMenus::setBodyItemTitle(item, QString::fromUtf8(body->name));
}
