// Design mode: the world as designed is kept in editState, apart from the
// world as simulated, so a run can be reverted to its design.
#include "controller.h"
#include "design_history.h"
#include "engine/world.h"
#include "palettes/graphs_window_controller.h"
#include "palettes/panels.h"
#include "palettes/simulation_window_controller.h"
#include "palettes/text_output_controller.h"
#include "view/path_predictor.h"
#include "view_window_registry.h"

void Controller::edit() {
  stopSim();
  if (editing_) {
    saveCurrentStateToDict(editState_, true, true, true);
    editing_ = false;
    // The run starts here: the graphs' errors are measured from this state.
    graphsPalette_->takeBaseline();
  } else {
    loadDesignState();
    editing_ = true;
  }
  // Design Mode checked, Run, Step, Edit Current and Revert disabled in
  // design mode; the other way round outside it.
  showSimulationState();
}

void Controller::editCurrent() {
  editing_ = false;
  simPalette_->setControlsState();
  saveCurrentStateToDict(editState_, true, true, true);
  edit();
}

void Controller::revertSim() {
  stopSim();
  loadDesignState();
  simPalette_->setControlsState();
}

void Controller::loadDesignState() {
  // The load reads editState while it rebuilds the world; work on a copy so
  // the design state stays what it was.
  const PlistDict design = editState_;
  loadingDesign_ = true;
  loadToCurrentStateFromDict(&design, true, true, true);
  loadingDesign_ = false;
  // The design's views are now these windows, in the same order.
  windows_->rememberDesignWindows();
}

void Controller::clearEverything() {
  closeAllWindows();
  w->reset();
  editing_ = false;
  stopSim();
  textPalette_->clickClear(nullptr);
  textPalette_->clickEnd(nullptr);
  graphsPalette_->clearHistory();
}

void Controller::resetSim() {
  history_->clear();
  editState_ = PlistDict();
  clearEverything();
  editCurrent();
}

void Controller::newProgram() {
  history_->clear();
  clearEverything();
  newWindow();
  editing_ = false;
  editCurrent();
}

void Controller::menuNew() {
  if (confirmSaveFirst()) {
    newProgram();
  }
}

bool Controller::confirmSaveFirst() {
  const Panels::Answer answer = panels_->confirmSaveFirst(nullptr);
  if (answer == Panels::Answer::Cancel) {
    return false;
  }
  if (answer == Panels::Answer::Save) {
    saveDocumentFromMenu();
  }
  return true;
}
