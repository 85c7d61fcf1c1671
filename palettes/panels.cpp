#include "palettes/panels.h"

#include <QColorDialog>

std::optional<QColor> Panels::chooseColor(QWidget* parent, const QColor& initial) {
  QColorDialog dialog(initial, parent);
  prepareModalDialog(dialog);
  if (dialog.exec() != QDialog::Accepted || !dialog.selectedColor().isValid()) {
    return std::nullopt;
  }
  return dialog.selectedColor();
}

void prepareModalDialog(QDialog& dialog) {
  dialog.setWindowModality(Qt::ApplicationModal);
  dialog.setWindowFlag(Qt::WindowStaysOnTopHint, true);
}
