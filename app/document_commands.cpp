// The datafile state of the application and the commands that move it
// between the program and files: open, save, export and print.
#include <QAction>
#include <QBuffer>
#include <QImageWriter>
#include <QMainWindow>
#include <cmath>

#include "controller.h"
#include "design_history.h"
#include "document/output_file.h"
#include "document/plist_writer.h"
#include "document/world_document.h"
#include "engine/world.h"
#include "orrenvale_gl_window_controller.h"
#include "palettes/panels.h"
#include "view/orrenvale_gl.h"
#include "view/view.h"
#include "view/view_fields.h"
#include "view_window_registry.h"

namespace {

// A window's drawing area in whole pixels: the stored size, kept between
// one pixel and a size any screen can show.
int windowExtent(double size) {
  if (!(size >= 1.0)) {
    return 1;
  }
  return size > 16384.0 ? 16384 : static_cast<int>(size);
}

}  // namespace

void Controller::saveCurrentStateToDict(PlistDict& dict, bool getBodies, bool getViews,
                                        bool getSim) {
  stopSim();
  std::optional<PlistValue> views;
  if (getViews) {
    // View windows are written oldest first, numbered from 0.
    PlistDict section;
    int counter = 0;
    for (OrrenvaleGLWindowController* window : windows_->windows()) {
      section.insert(QString::number(counter),
                     PlistValue(writeViewDict(*window->CGLview()->view())));
      ++counter;
    }
    views = PlistValue(std::move(section));
  }
  dict =
      saveWorldToDict(*w, DocumentSections{getBodies, getViews, getSim}, views ? &*views : nullptr);
  if (&dict == &editState_) {
    windows_->rememberDesignWindows();
  }
}

void Controller::loadToCurrentStateFromDict(const PlistDict* dict, bool getBodies, bool getViews,
                                            bool getSim) {
  clearEverything();
  LoadHooks hooks;
  hooks.renameBody = [this](Body& body, std::string_view name) { worldRenameBody(&body, name); };
  hooks.loadViews = [this](const PlistValue& value) {
    const PlistDict* section = value.dict();
    if (section == nullptr) {
      return;
    }
    for (const PlistEntry& entry : section->entries()) {
      OrrenvaleGLWindowController* window = newWindow();
      View* v = window->CGLview()->view();
      v->number = saturateToInt32(leadingInteger(entry.key).value_or(0));
      ViewDictExtras extras;
      if (const PlistDict* viewDict = entry.value.dict()) {
        extras = applyViewDict(*v, *viewDict);
      }
      if (QString::fromUtf8(v->name) != window->window()->windowTitle()) {
        setWindowTitleAndMinSize(window->window(), QString::fromUtf8(v->name));
      }
      window->setContentSize(windowExtent(extras.width), windowExtent(extras.height));
      v->trackball->setSize(extras.width, extras.height);
      v->trackball->rotation.setRollPitchYaw(extras.roll, extras.pitch, extras.yaw);
    }
  };
  loadToWorldFromDict(*w, dict, DocumentSections{getBodies, getViews, getSim}, hooks);
}

void Controller::openDocumentFromMenu() {
  if (!confirmSaveFirst()) {
    return;
  }
  const std::optional<Panels::OpenChoice> choice = panels_->runOpenPanel(nullptr);
  if (!choice) {
    return;
  }
  // The file's world replaces the design, and with it the design's history.
  history_->clear();
  // A file that is not a readable property-list dictionary gives no
  // dictionary; the load then resets everything and finds nothing.
  const DocumentReadResult read = readDocumentFile(choice->path);
  loadToCurrentStateFromDict(read.dict ? &*read.dict : nullptr, choice->bodies, choice->views,
                             choice->simulation);
  editCurrent();
}

void Controller::saveDocumentFromMenu() {
  const std::optional<Panels::SaveChoice> choice = panels_->runSavePanel(nullptr);
  if (!choice) {
    return;
  }
  bool resumeDesign = false;
  if (choice->stateIndex == 0) {
    if (editing_) {
      saveCurrentStateToDict(editState_, true, true, true);
      resumeDesign = true;
    }
    loadDesignState();
  }
  PlistDict dict;
  saveCurrentStateToDict(dict, choice->bodies, choice->views, choice->simulation);
  // A failed write is not reported; QSaveFile leaves any old file intact.
  writePlistFile(choice->path, PlistValue(std::move(dict)));
  if (resumeDesign) {
    editCurrent();
  }
}

bool Controller::openFile(const QString& path) {
  history_->clear();
  const DocumentReadResult read = readDocumentFile(path);
  loadToCurrentStateFromDict(read.dict ? &*read.dict : nullptr, true, true, true);
  editCurrent();
  return true;
}

void Controller::exportTIFF() {
  OrrenvaleGL* view = currentGLView();
  if (view == nullptr) {
    return;
  }
  const std::optional<QString> path =
      panels_->runSaveFilePanel(nullptr, "Export View to TIFF", "tiff");
  if (!path) {
    return;
  }
  // The TIFF is made in memory, then written whole to a temporary file and
  // moved into place (a FIFO or a device as a stream); a failed write is not
  // reported and leaves any earlier file as it was.
  QBuffer tiff;
  tiff.open(QIODevice::WriteOnly);
  QImageWriter writer(&tiff, "tiff");
  if (!writer.write(view->captureView())) {
    return;
  }
  OutputFile file;
  if (file.open(*path, FifoOpen::FailWithoutReader) && file.write(tiff.data())) {
    file.commit();
  }
}

void Controller::printScreen() {
  OrrenvaleGL* view = currentGLView();
  if (view == nullptr) {
    return;
  }
  panels_->printImage(view->window(), view->captureView());
}
