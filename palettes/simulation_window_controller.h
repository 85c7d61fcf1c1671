#pragma once

#include <vector>

#include "engine/world.h"
#include "palettes/palette_controller.h"

class PaletteHost;
class QComboBox;
class QLineEdit;
class QPushButton;

// The simulation palette: the world's parameters, its conserved quantities
// and elapsed time, and the buttons that run, step, enter design mode and
// create a body.
class SimulationWindowController : public PaletteController {
  Q_OBJECT

 public:
  explicit SimulationWindowController(PaletteHost& host, QObject* parent = nullptr);

  void getValues() override;
  // Titles and enables the run, step and design-mode buttons from the
  // controller's running and editing flags.
  void setControlsState();

  QPushButton* runButton() const { return runButton_; }
  QPushButton* stepButton() const { return stepButton_; }
  QPushButton* editButton() const { return editButton_; }

  void clickRunButton(QObject* sender);
  void clickStepButton(QObject* sender);
  void clickEditButton(QObject* sender);
  void clickCreateButton(QObject* sender);

 protected:
  void setValues(QObject* sender) override;
  void windowWillClose() override;
  void willBecomeVisible() override;

 private:
  void buildWindow();
  void commitCollisionModel();

  QLineEdit* name_ = nullptr;
  QLineEdit* g_ = nullptr;
  QLineEdit* e_ = nullptr;
  QLineEdit* speed_ = nullptr;
  QLineEdit* timestep_ = nullptr;
  QLineEdit* tracehistory_ = nullptr;
  QComboBox* adaptive_ = nullptr;
  QComboBox* collisiontype_ = nullptr;
  QLineEdit* energy_ = nullptr;
  QLineEdit* mx_ = nullptr;
  QLineEdit* my_ = nullptr;
  QLineEdit* mz_ = nullptr;
  QLineEdit* elapsedtime_ = nullptr;
  QPushButton* runButton_ = nullptr;
  QPushButton* stepButton_ = nullptr;
  QPushButton* editButton_ = nullptr;
  // The user chose "other" and the pop-up keeps showing it, even when the
  // coefficient happens to be exactly 0 or 1.
  bool userSelectedOtherE_ = false;
  // The controls that show the world's parameters.
  std::vector<FieldControl<World>> fields_;
};
