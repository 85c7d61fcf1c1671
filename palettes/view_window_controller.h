#pragma once

#include "palettes/palette_controller.h"

class PaletteHost;
class ColorWell;
class QComboBox;
class QLineEdit;
class View;

// The view palette: camera, focus, trackball orientation in degrees,
// tracking mode, grid, traces (and what they are drawn relative to) and
// vectors of the main view window's view.
// It also keeps that window's title equal to the view's name.
class ViewWindowController : public PaletteController {
  Q_OBJECT

 public:
  explicit ViewWindowController(PaletteHost& host, QObject* parent = nullptr);

  void getValues() override;
  // Enables or disables every control; disabling also empties them, so no
  // stale values of a closed view remain.
  void setCEnabled(bool enabled);

 protected:
  void setValues(QObject* sender) override;
  void windowWillClose() override;

 private:
  void buildWindow();
  void showTrackingMode(const View& v);
  // Commits every control other than the camera and focus vectors.
  void commitSetting(View& v, QObject* sender);

  QLineEdit* name_ = nullptr;
  QLineEdit* cx_ = nullptr;
  QLineEdit* cy_ = nullptr;
  QLineEdit* cz_ = nullptr;
  QLineEdit* fx_ = nullptr;
  QLineEdit* fy_ = nullptr;
  QLineEdit* fz_ = nullptr;
  QLineEdit* tr_ = nullptr;
  QLineEdit* tp_ = nullptr;
  QLineEdit* ty_ = nullptr;
  QComboBox* trackball_ = nullptr;
  QComboBox* type_ = nullptr;
  QLineEdit* bodytotrack_ = nullptr;
  QLineEdit* autodistance_ = nullptr;
  QComboBox* gridenable_ = nullptr;
  QLineEdit* gridspacing_ = nullptr;
  ColorWell* gridcolor_ = nullptr;
  QComboBox* traceenable_ = nullptr;
  QComboBox* tracesrelative_ = nullptr;
  QComboBox* vectors_ = nullptr;
  QComboBox* predictpaths_ = nullptr;
  QLineEdit* predicttime_ = nullptr;
};
