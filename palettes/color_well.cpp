#include "palettes/color_well.h"

#include <QPainter>

#include "palettes/panels.h"

ColorWell::ColorWell(Panels* panels, QWidget* parent) : QPushButton(parent), panels_(panels) {
  setMinimumSize(48, 22);
  setMaximumWidth(96);
  connect(this, &QPushButton::clicked, this, &ColorWell::choose);
}

void ColorWell::setComponents(const float (&rgb)[3]) {
  showColor(QColor::fromRgbF(rgb[0], rgb[1], rgb[2], 1.0f));
}

std::array<float, 3> ColorWell::components() const {
  return {color_.redF(), color_.greenF(), color_.blueF()};
}

void ColorWell::clearColor() {
  if (hasColor_) {
    hasColor_ = false;
    update();
  }
}

void ColorWell::showColor(const QColor& color) {
  if (!hasColor_ || color != color_) {
    color_ = color;
    hasColor_ = true;
    update();
  }
}

void ColorWell::choose() {
  if (panels_ == nullptr) {
    return;
  }
  const std::optional<QColor> chosen = panels_->chooseColor(window(), color_);
  if (chosen) {
    // Models keep three components; alpha is always opaque.
    showColor(QColor::fromRgbF(chosen->redF(), chosen->greenF(), chosen->blueF(), 1.0f));
    emit colorChosen();
  }
}

void ColorWell::paintEvent(QPaintEvent* event) {
  QPushButton::paintEvent(event);
  if (!hasColor_) {
    return;
  }
  QPainter painter(this);
  const QRect swatch = rect().adjusted(6, 5, -6, -5);
  painter.fillRect(swatch, color_);
  painter.setPen(palette().color(QPalette::Dark));
  painter.drawRect(swatch.adjusted(0, 0, -1, -1));
}
