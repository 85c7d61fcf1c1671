// Design mode: the world as designed is kept in editState, apart from the
// world as simulated, so a run can be reverted to its design.
#include <QAction>

#include "controller.h"
#include "engine/world.h"
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
    // The load reads editState while it rebuilds the world; work on a copy
    // so the design state stays what it was.
    const PlistDict design = editState_;
    loadToCurrentStateFromDict(&design, true, true, true);
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
  const PlistDict design = editState_;
  loadToCurrentStateFromDict(&design, true, true, true);
  simulationPaletteController()->setControlsState();
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
