#include "palettes/panels.h"

#include <QColorDialog>

namespace {
Panels* gPanels = nullptr;
}  // namespace

std::optional<QColor> Panels::chooseColor(QWidget* parent, const QColor& initial) {
  const QColor chosen = QColorDialog::getColor(initial, parent);
  if (!chosen.isValid()) {
    return std::nullopt;
  }
  return chosen;
}

void setPanels(Panels* panels) {
  gPanels = panels;
}

Panels* panels() {
  return gPanels;
}
