#include "qt_panels.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QImage>
#include <QMessageBox>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

// Adds an accessory widget below the file dialog's own controls. Qt's own
// (non-native) dialog lays itself out on a grid.
void attachAccessory(QFileDialog& dialog, QWidget* accessory) {
  dialog.setOption(QFileDialog::DontUseNativeDialog);
  prepareModalDialog(dialog);
  if (auto* grid = qobject_cast<QGridLayout*>(dialog.layout())) {
    grid->addWidget(accessory, grid->rowCount(), 0, 1, grid->columnCount());
  }
}

QCheckBox* addCheckBox(QWidget* accessory, const char* objectName, const QString& title) {
  auto* box = new QCheckBox(title, accessory);
  box->setObjectName(objectName);
  box->setChecked(true);
  accessory->layout()->addWidget(box);
  return box;
}

}  // namespace

QString QtPanels::withSuffix(const QString& path, const QString& suffix) {
  if (suffix.isEmpty() || path.endsWith('.' + suffix, Qt::CaseInsensitive)) {
    return path;
  }
  if (suffix.compare("tiff", Qt::CaseInsensitive) == 0 &&
      path.endsWith(".tif", Qt::CaseInsensitive)) {
    return path;
  }
  return path + '.' + suffix;
}

std::optional<QString> QtPanels::runFileDialog(QFileDialog& dialog) {
  if (!lastFolder_.isEmpty()) {
    dialog.setDirectory(lastFolder_);
  }
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
    return std::nullopt;
  }
  const QString path = dialog.selectedFiles().first();
  lastFolder_ = QFileInfo(path).absolutePath();
  return path;
}

Panels::Answer QtPanels::confirmSaveFirst(QWidget* parent) {
  QMessageBox box(QMessageBox::Question, "Command Confirmation",
                  "Do you want to save the current simulation first?", QMessageBox::NoButton,
                  parent);
  QPushButton* save = box.addButton("Save", QMessageBox::AcceptRole);
  QPushButton* dontSave = box.addButton("Don't Save", QMessageBox::DestructiveRole);
  box.addButton("Cancel", QMessageBox::RejectRole);
  box.setDefaultButton(save);
  prepareModalDialog(box);
  box.exec();
  if (box.clickedButton() == save) {
    return Answer::Save;
  }
  return box.clickedButton() == dontSave ? Answer::DontSave : Answer::Cancel;
}

std::optional<Panels::OpenChoice> QtPanels::runOpenPanel(QWidget* parent) {
  QFileDialog dialog(parent, "Open Datafile");
  dialog.setFileMode(QFileDialog::ExistingFile);
  dialog.setAcceptMode(QFileDialog::AcceptOpen);
  // Any file may be opened; the datafile filter is there to choose.
  dialog.setNameFilters({"All files (*)", "Orrenvale datafiles (*.ovd)"});
  auto* accessory = new QWidget;
  accessory->setLayout(new QVBoxLayout);
  QCheckBox* bodies = addCheckBox(accessory, "loadBodies", "Load body states");
  QCheckBox* sim = addCheckBox(accessory, "loadSimulation", "Load simulation parameters");
  QCheckBox* views = addCheckBox(accessory, "loadViews", "Load view states");
  attachAccessory(dialog, accessory);
  const std::optional<QString> path = runFileDialog(dialog);
  if (!path) {
    return std::nullopt;
  }
  return OpenChoice{*path, bodies->isChecked(), sim->isChecked(), views->isChecked()};
}

std::optional<Panels::SaveChoice> QtPanels::runSavePanel(QWidget* parent) {
  QFileDialog dialog(parent, "Save Datafile");
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setNameFilter("Orrenvale datafiles (*.ovd)");
  dialog.setDefaultSuffix("ovd");
  auto* accessory = new QWidget;
  accessory->setLayout(new QVBoxLayout);
  QCheckBox* bodies = addCheckBox(accessory, "saveBodies", "Save body states");
  QCheckBox* sim = addCheckBox(accessory, "saveSimulation", "Save simulation parameters");
  QCheckBox* views = addCheckBox(accessory, "saveViews", "Save view states");
  auto* state = new QComboBox(accessory);
  state->setObjectName("saveState");
  state->addItems({"Save design state", "Save current state"});
  accessory->layout()->addWidget(state);
  attachAccessory(dialog, accessory);
  const std::optional<QString> path = runFileDialog(dialog);
  if (!path) {
    return std::nullopt;
  }
  return SaveChoice{withSuffix(*path, "ovd"), bodies->isChecked(), sim->isChecked(),
                    views->isChecked(), state->currentIndex()};
}

std::optional<QString> QtPanels::runSaveFilePanel(QWidget* parent, const QString& title,
                                                  const QString& requiredSuffix) {
  QFileDialog dialog(parent, title);
  dialog.setOption(QFileDialog::DontUseNativeDialog);
  prepareModalDialog(dialog);
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  if (!requiredSuffix.isEmpty()) {
    dialog.setDefaultSuffix(requiredSuffix);
    QString patterns = "*." + requiredSuffix;
    if (requiredSuffix == "tiff") {
      patterns += " *.tif";
    }
    dialog.setNameFilter(QString("%1 files (%2)").arg(requiredSuffix.toUpper(), patterns));
  }
  const std::optional<QString> path = runFileDialog(dialog);
  if (!path) {
    return std::nullopt;
  }
  return withSuffix(*path, requiredSuffix);
}

bool QtPanels::printImage(QWidget* parent, const QImage& image) {
  QPrinter printer;
  QPrintDialog dialog(&printer, parent);
  prepareModalDialog(dialog);
  if (dialog.exec() != QDialog::Accepted) {
    return false;
  }
  QPainter painter(&printer);
  const QRect page = painter.viewport();
  QSize size = image.size();
  size.scale(page.size(), Qt::KeepAspectRatio);
  // Never enlarge: a view prints at its own size unless the page is smaller.
  if (size.width() > image.width()) {
    size = image.size();
  }
  painter.drawImage(QRect(page.topLeft(), size), image);
  return true;
}

void QtPanels::alert(QWidget* parent, const QString& title, const QString& message) {
  QMessageBox box(QMessageBox::Warning, title, message, QMessageBox::NoButton, parent);
  box.addButton("OK", QMessageBox::AcceptRole);
  prepareModalDialog(box);
  box.exec();
}
