#include "controller_host.h"

#include <QMainWindow>

#include "app_menus.h"
#include "controller.h"
#include "design_history.h"
#include "orrenvale_gl_window_controller.h"
#include "view/path_predictor.h"
#include "view_window_registry.h"

World& ControllerHost::world() {
  return controller_.world();
}

int ControllerHost::panType() const {
  return controller_.panType();
}

bool ControllerHost::running() const {
  return controller_.running();
}

bool ControllerHost::editing() const {
  return controller_.editing();
}

// Edits of the design go through its undo history; the paths shown in
// design mode are predicted from it.
void ControllerHost::deleteBody(int32_t id) {
  controller_.history().deleteBody(id);
}

void ControllerHost::bodyDragged(const BodyDrag& drag) {
  controller_.history().bodyDragged(drag);
}

const PredictedPaths* ControllerHost::predictedPaths(double horizon) {
  return controller_.predictor().paths(controller_.world(), horizon);
}

void ControllerHost::commitBodyEdit(Body& body, const std::function<void()>& apply) {
  controller_.history().commitBodyEdit(body, apply);
}

void ControllerHost::commitWorldEdit(const std::function<void()>& apply) {
  controller_.history().commitWorldEdit(apply);
}

View* ControllerHost::currentView() {
  return controller_.currentView();
}

QWidget* ControllerHost::currentViewWindow() {
  OrrenvaleGLWindowController* main = controller_.windows().mainWindow();
  return main != nullptr ? main->window() : nullptr;
}

void ControllerHost::setWindowTitleAndMinSize(QWidget* window, const QString& title) {
  controller_.setWindowTitleAndMinSize(window, title);
}

// The palettes' buttons pass themselves as the sender; the commands do the
// same whoever sends them.
void ControllerHost::toggleSim(QObject* /*sender*/) {
  controller_.toggleSim();
}

void ControllerHost::stepSim(QObject* /*sender*/) {
  controller_.stepSim();
}

void ControllerHost::edit(QObject* /*sender*/) {
  controller_.edit();
}

void ControllerHost::newBody(QObject* /*sender*/) {
  controller_.newBody();
}

void ControllerHost::setWorldSpeed(float millisecondsPerUpdate) {
  controller_.setWorldSpeed(millisecondsPerUpdate);
}

void ControllerHost::worldRenameBody(Body* body, std::string_view newName) {
  controller_.worldRenameBody(body, newName);
}

void ControllerHost::showSimulationPaletteFromMenu(QObject* sender) {
  controller_.showSimulationPaletteFromMenu(sender);
}

void ControllerHost::showViewPaletteFromMenu(QObject* sender) {
  controller_.showViewPaletteFromMenu(sender);
}

void ControllerHost::showBodyPaletteFromMenu(QObject* sender) {
  controller_.showBodyPaletteFromMenu(sender);
}

void ControllerHost::showOutputPaletteFromMenu(QObject* sender) {
  controller_.showOutputPaletteFromMenu(sender);
}

void ControllerHost::showGraphsPaletteFromMenu(QObject* sender) {
  controller_.showGraphsPaletteFromMenu(sender);
}

void ControllerHost::populateMenuBar(QMenuBar* bar) {
  controller_.menus().populateMenuBar(bar);
}
