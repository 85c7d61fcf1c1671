#include "qt_panels.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QImage>
#include <QMessageBox>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>
#include <QProgressDialog>
#include <QPushButton>
#include <QSpinBox>
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

// A save panel that asks for files of one kind: the suffix is added to a
// name typed without it, and the filter shows only such files.
void requireSuffix(QFileDialog& dialog, const QString& suffix, const QString& kind) {
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  if (suffix.isEmpty()) {
    return;
  }
  dialog.setDefaultSuffix(suffix);
  QString patterns = "*." + suffix;
  if (suffix == "tiff") {
    patterns += " *.tif";
  }
  dialog.setNameFilter(QString("%1 %2 (%3)").arg(suffix.toUpper(), kind, patterns));
}

QCheckBox* addCheckBox(QWidget* accessory, const char* objectName, const QString& title) {
  auto* box = new QCheckBox(title, accessory);
  box->setObjectName(objectName);
  box->setChecked(true);
  accessory->layout()->addWidget(box);
  return box;
}

// QProgressDialog counts in whole steps; a thousand show a smooth bar.
constexpr int kProgressSteps = 1000;

class DialogProgress : public Panels::Progress {
 public:
  DialogProgress(QWidget* parent, const QString& title) : dialog_(parent) {
    dialog_.setWindowTitle(title);
    dialog_.setRange(0, kProgressSteps);
    dialog_.setMinimumDuration(0);
    dialog_.setAutoClose(false);
    dialog_.setAutoReset(false);
    prepareModalDialog(dialog_);
    dialog_.show();
  }
  bool update(double fraction, const QString& text) override {
    if (dialog_.labelText() != text) {
      dialog_.setLabelText(text);
    }
    // A modal progress dialog handles pending events as its value is set.
    dialog_.setValue(static_cast<int>(fraction * kProgressSteps));
    QCoreApplication::processEvents();
    return !dialog_.wasCanceled();
  }

 private:
  QProgressDialog dialog_;
};

// The same bar in a window that leaves the rest of the program running.
// Cancel (or closing the window) reaches the caller from the event loop,
// never from inside the dialog's own signal, so the caller may delete this
// object in answer.
class WindowProgress : public Panels::Progress {
 public:
  WindowProgress(QWidget* parent, const QString& title, std::function<void()> cancelled)
      : dialog_(parent) {
    dialog_.setWindowTitle(title);
    dialog_.setRange(0, kProgressSteps);
    dialog_.setMinimumDuration(0);
    dialog_.setAutoClose(false);
    dialog_.setAutoReset(false);
    dialog_.setWindowModality(Qt::NonModal);
    // Above the view windows, like the palettes.
    dialog_.setWindowFlag(Qt::WindowStaysOnTopHint, true);
    QObject::connect(&dialog_, &QProgressDialog::canceled, &dialog_, std::move(cancelled),
                     Qt::QueuedConnection);
    dialog_.show();
  }
  bool update(double fraction, const QString& text) override {
    if (dialog_.labelText() != text) {
      dialog_.setLabelText(text);
    }
    dialog_.setValue(static_cast<int>(fraction * kProgressSteps));
    return !dialog_.wasCanceled();
  }

 private:
  QProgressDialog dialog_;
};

}  // namespace

std::unique_ptr<Panels::Progress> QtPanels::openModelessProgress(QWidget* parent,
                                                                 const QString& title,
                                                                 std::function<void()> cancelled) {
  return std::make_unique<WindowProgress>(parent, title, std::move(cancelled));
}

std::unique_ptr<Panels::Progress> QtPanels::openProgress(QWidget* parent, const QString& title) {
  return std::make_unique<DialogProgress>(parent, title);
}

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
  noteChosenFile(path);
  return path;
}

void QtPanels::noteChosenFile(const QString& path) {
  lastFolder_ = QFileInfo(path).absolutePath();
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
  requireSuffix(dialog, requiredSuffix, "files");
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

std::optional<Panels::MovieChoice> QtPanels::runMoviePanel(QWidget* parent, const QString& suffix) {
  QFileDialog dialog(parent, "Export View as Movie");
  requireSuffix(dialog, suffix, "movies");
  auto* accessory = new QWidget;
  auto* form = new QFormLayout(accessory);
  auto* length = new QSpinBox;
  length->setObjectName("movieLength");
  // An hour at 24 frames a second, or as many frames.
  length->setRange(1, 86400);
  length->setValue(lastMovie_.length);
  auto* unit = new QComboBox;
  unit->setObjectName("movieLengthUnit");
  unit->addItems({"seconds", "frames"});
  unit->setCurrentIndex(lastMovie_.inSeconds ? 0 : 1);
  auto* lengthRow = new QHBoxLayout;
  lengthRow->addWidget(length);
  lengthRow->addWidget(unit);
  form->addRow("Length:", lengthRow);
  auto* rate = new QSpinBox;
  rate->setObjectName("movieFrameRate");
  rate->setRange(1, 120);
  rate->setValue(lastMovie_.framesPerSecond);
  rate->setSuffix(" frames per second");
  form->addRow("Frame rate:", rate);
  attachAccessory(dialog, accessory);
  const std::optional<QString> path = runFileDialog(dialog);
  if (!path) {
    return std::nullopt;
  }
  lastMovie_ = MovieChoice{withSuffix(*path, suffix), length->value(), unit->currentIndex() == 0,
                           rate->value()};
  return lastMovie_;
}

void QtPanels::about(QWidget* parent, const QString& title, const QString& text) {
  QMessageBox box(QMessageBox::NoIcon, title, text, QMessageBox::NoButton, parent);
  box.setTextFormat(Qt::RichText);
  box.setIconPixmap(QApplication::windowIcon().pixmap(64));
  box.addButton("OK", QMessageBox::AcceptRole);
  prepareModalDialog(box);
  box.exec();
}
