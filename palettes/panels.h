#pragma once

#include <QColor>
#include <QString>
#include <functional>
#include <memory>
#include <optional>

class QDialog;
class QImage;
class QWidget;

// Every modal dialog of the application goes through this interface, so
// tests can answer them without a person. The application installs the
// Qt implementation at start-up; tests install their own.
class Panels {
 public:
  virtual ~Panels() = default;

  enum class Answer { Save, DontSave, Cancel };
  // "Command Confirmation": "Do you want to save the current simulation
  // first?" with "Save" (default), "Don't Save" and "Cancel".
  virtual Answer confirmSaveFirst(QWidget* parent) = 0;

  struct OpenChoice {
    QString path;
    bool bodies = true;
    bool simulation = true;
    bool views = true;
  };
  // The Open panel with its three "Load ..." check boxes; nothing on cancel.
  virtual std::optional<OpenChoice> runOpenPanel(QWidget* parent) = 0;

  struct SaveChoice {
    QString path;  // with the "ovd" extension added when it had none
    bool bodies = true;
    bool simulation = true;
    bool views = true;
    int stateIndex = 0;  // 0 "Save design state", 1 "Save current state"
  };
  // The "Save Datafile" panel with its check boxes and pop-up.
  virtual std::optional<SaveChoice> runSavePanel(QWidget* parent) = 0;

  // A plain save panel (for example "Export View to TIFF" with suffix
  // "tiff", or "Save Log" with none); nothing on cancel.
  virtual std::optional<QString> runSaveFilePanel(QWidget* parent, const QString& title,
                                                  const QString& requiredSuffix) = 0;

  struct MovieChoice {
    QString path;  // with the movie's suffix added when it had none
    int length = 10;
    bool inSeconds = true;  // length in seconds of the movie, or in frames
    int framesPerSecond = 24;
  };
  // The "Export View as Movie" panel: the file name (suffix "mp4" or
  // "webm"), the movie's length in seconds or frames, and its frame rate.
  virtual std::optional<MovieChoice> runMoviePanel(QWidget* parent, const QString& suffix) = 0;

  // Runs the print dialog and prints the image; false when cancelled.
  virtual bool printImage(QWidget* parent, const QImage& image) = 0;

  // A message with a single "OK" button.
  virtual void alert(QWidget* parent, const QString& title, const QString& message) = 0;

  // A modal progress panel with a Cancel button, for work that takes long;
  // it goes when the object goes.
  class Progress {
   public:
    virtual ~Progress() = default;
    // Shows how far the work has come (0 to 1) and what it is doing, and
    // lets the program answer the window system; false once the user has
    // cancelled.
    virtual bool update(double fraction, const QString& text) = 0;
  };
  virtual std::unique_ptr<Progress> openProgress(QWidget* parent, const QString& title) = 0;
  // A progress window for work that goes on while the program runs as
  // usual (a movie recorded as the view draws): it blocks nothing, and its
  // Cancel button, or closing it, calls cancelled. update() only shows how
  // far the work has come; it goes when the object goes.
  virtual std::unique_ptr<Progress> openModelessProgress(QWidget* parent, const QString& title,
                                                         std::function<void()> cancelled) = 0;

  // The About box: the rich text beside the program's icon, with "OK".
  virtual void about(QWidget* parent, const QString& title, const QString& text) = 0;

  // The colour chooser of the palettes' colour wells; nothing on cancel. The
  // default runs the standard colour dialog, so implementations need only
  // override it to answer without a person.
  virtual std::optional<QColor> chooseColor(QWidget* parent, const QColor& initial);
};

// Makes a dialog application-modal and keeps it above every floating window
// of the program: the palettes and the splash stay on top of the view
// windows, and a modal dialog they covered would leave the program looking
// frozen. Every dialog the program runs goes through this.
void prepareModalDialog(QDialog& dialog);
