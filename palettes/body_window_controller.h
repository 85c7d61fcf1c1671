#pragma once

#include <vector>

#include "engine/body.h"
#include "palettes/palette_controller.h"

class PaletteHost;
class ColorWell;
class QComboBox;
class QLineEdit;
class QPushButton;

// The body palette: position, velocity, acceleration, mass, radius, colour,
// trace and vector display of the body selected in the main window's view.
// The body is looked up afresh every time, so selecting another body or
// making another view window main needs no message.
class BodyWindowController : public PaletteController {
  Q_OBJECT

 public:
  explicit BodyWindowController(PaletteHost& host, QObject* parent = nullptr);

  void getValues() override;
  // Enables or disables every control; disabling also empties them.
  void setCEnabled(bool enabled);
  // Deletes the inspected body, if there is one.
  void clickDelete(QObject* sender);

 protected:
  void setValues(QObject* sender) override;
  void windowWillClose() override;

 private:
  void buildWindow();
  // The body selected in the main window's view, or null.
  Body* inspectedBody() const;

  QLineEdit* name_ = nullptr;
  QLineEdit* px_ = nullptr;
  QLineEdit* py_ = nullptr;
  QLineEdit* pz_ = nullptr;
  QLineEdit* vx_ = nullptr;
  QLineEdit* vy_ = nullptr;
  QLineEdit* vz_ = nullptr;
  QLineEdit* ax_ = nullptr;
  QLineEdit* ay_ = nullptr;
  QLineEdit* az_ = nullptr;
  QLineEdit* mass_ = nullptr;
  QLineEdit* radius_ = nullptr;
  ColorWell* color_ = nullptr;
  QComboBox* traceenable_ = nullptr;
  QComboBox* vectorenable_ = nullptr;
  QPushButton* deleteButton_ = nullptr;
  // The controls that show the body's fields.
  std::vector<FieldControl<Body>> fields_;
};
