#pragma once

#include <QColor>
#include <QPushButton>
#include <array>

// A button that shows a colour and lets the user pick another through the
// application's colour chooser. It can also show no colour at all, for a
// palette that has nothing to inspect.
class Panels;

class ColorWell : public QPushButton {
  Q_OBJECT

 public:
  // Colours are chosen through the dialogs of panels (none: the well only
  // shows its colour).
  explicit ColorWell(Panels* panels, QWidget* parent = nullptr);

  // Shows the colour made of three stored components, opaque.
  void setComponents(const float (&rgb)[3]);
  // The shown colour's red, green and blue, as the model stores them.
  std::array<float, 3> components() const;
  void clearColor();
  bool hasColor() const { return hasColor_; }

 signals:
  // The user chose a colour; the well already shows it.
  void colorChosen();

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  void choose();
  void showColor(const QColor& color);

  Panels* panels_;
  QColor color_;
  bool hasColor_ = false;
};
