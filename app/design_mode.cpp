// Design mode: the world as designed is kept in editState, apart from the
// world as simulated, so a run can be reverted to its design.
#include <QAction>

#include "controller.h"
#include "engine/world.h"
#include "orrenvale_gl_window_controller.h"
#include "palettes/panels.h"
#include "palettes/simulation_window_controller.h"
#include "palettes/text_output_controller.h"

void Controller::edit(QObject* /*sender*/) {
  stopSim();
  if (editing_) {
    saveCurrentStateToDict(editState_, true, true, true);
    menuSimEdit->setChecked(false);
    menuSimRun->setEnabled(true);
    menuSimStep->setEnabled(true);
    menuSimEditCurrent->setEnabled(true);
    menuSimRevert->setEnabled(true);
    editing_ = false;
  } else {
    loadDesignState();
    menuSimEdit->setChecked(true);
    menuSimRun->setEnabled(false);
    menuSimStep->setEnabled(false);
    menuSimEditCurrent->setEnabled(false);
    menuSimRevert->setEnabled(false);
    editing_ = true;
  }
  simulationPaletteController()->setControlsState();
}

void Controller::editCurrent(QObject* /*sender*/) {
  editing_ = false;
  simulationPaletteController()->setControlsState();
  saveCurrentStateToDict(editState_, true, true, true);
  edit(nullptr);
}

void Controller::revertSim(QObject* /*sender*/) {
  stopSim();
  loadDesignState();
  simulationPaletteController()->setControlsState();
}

void Controller::loadDesignState() {
  // The load reads editState while it rebuilds the world; work on a copy so
  // the design state stays what it was.
  const PlistDict design = editState_;
  loadingDesign_ = true;
  loadToCurrentStateFromDict(&design, true, true, true);
  loadingDesign_ = false;
  // The design's views are now these windows, in the same order.
  rememberDesignWindows();
}

void Controller::rememberDesignWindows() {
  designWindows_.clear();
  std::unordered_map<int, QPoint> kept;
  for (OrrenvaleGLWindowController* window : viewWindows_) {
    designWindows_.push_back(window->serial());
  }
  for (int serial : designWindows_) {
    if (auto at = closedAt_.find(serial); at != closedAt_.end()) {
      kept.insert(*at);
    }
  }
  closedAt_ = std::move(kept);
}

void Controller::resetSim() {
  closeAllWindows();
  w->reset();
  editing_ = false;
  stopSim();
  textPaletteController()->clickClear(nullptr);
  textPaletteController()->clickEnd(nullptr);
}

void Controller::resetSim(QObject* /*sender*/) {
  editState_ = PlistDict();
  resetSim();
  editCurrent(nullptr);
}

void Controller::newProgram() {
  resetSim();
  newWindow();
  editing_ = false;
  editCurrent(nullptr);
}

void Controller::menuNew(QObject* /*sender*/) {
  const Panels::Answer answer = panels()->confirmSaveFirst(nullptr);
  if (answer == Panels::Answer::Cancel) {
    return;
  }
  if (answer == Panels::Answer::Save) {
    saveDocumentFromMenu(nullptr);
  }
  newProgram();
}
