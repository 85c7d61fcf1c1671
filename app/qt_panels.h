#pragma once

#include "palettes/panels.h"

// The dialogs as a person sees them: message boxes, Qt's own file dialogs
// with the check boxes and pop-up of the Open and Save panels added below,
// and the print dialog.
class QtPanels : public Panels {
 public:
  Answer confirmSaveFirst(QWidget* parent) override;
  std::optional<OpenChoice> runOpenPanel(QWidget* parent) override;
  std::optional<SaveChoice> runSavePanel(QWidget* parent) override;
  std::optional<QString> runSaveFilePanel(QWidget* parent, const QString& title,
                                          const QString& requiredSuffix) override;
  bool printImage(QWidget* parent, const QImage& image) override;
  void alert(QWidget* parent, const QString& title, const QString& message) override;
};
