#pragma once

#include "palettes/palette_host.h"

class Controller;

// What the views and palettes reach of the application: the Controller's
// state and commands, and the parts that own the rest (the design's undo
// history takes the edits, the path predictor the predicted paths). The
// Controller owns it and hands it to every view and palette it makes.
class ControllerHost : public PaletteHost {
 public:
  ControllerHost(Controller& controller, Panels* panels)
      : controller_(controller), panels_(panels) {}

  World& world() override;
  int panType() const override;
  bool running() const override;
  bool editing() const override;
  void deleteBody(int32_t id) override;
  void bodyDragged(const BodyDrag& drag) override;
  const PredictedPaths* predictedPaths(double horizon) override;

  Panels* panels() override { return panels_; }
  View* currentView() override;
  QWidget* currentViewWindow() override;
  void setWindowTitleAndMinSize(QWidget* window, const QString& title) override;
  void toggleSim(QObject* sender) override;
  void stepSim(QObject* sender) override;
  void edit(QObject* sender) override;
  void newBody(QObject* sender) override;
  void setWorldSpeed(float millisecondsPerUpdate) override;
  void worldRenameBody(Body* body, std::string_view newName) override;
  void commitBodyEdit(Body& body, const std::function<void()>& apply) override;
  void commitWorldEdit(const std::function<void()>& apply) override;
  void showSimulationPaletteFromMenu(QObject* sender) override;
  void showViewPaletteFromMenu(QObject* sender) override;
  void showBodyPaletteFromMenu(QObject* sender) override;
  void showOutputPaletteFromMenu(QObject* sender) override;
  void showGraphsPaletteFromMenu(QObject* sender) override;
  void populateMenuBar(QMenuBar* bar) override;

 private:
  Controller& controller_;
  Panels* panels_;
};
