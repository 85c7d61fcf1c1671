#pragma once

#include "palettes/panels.h"

class QFileDialog;

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
  std::unique_ptr<Progress> openProgress(QWidget* parent, const QString& title) override;
  std::optional<MovieChoice> runMoviePanel(QWidget* parent, const QString& suffix) override;
  std::unique_ptr<Progress> openModelessProgress(QWidget* parent, const QString& title,
                                                 std::function<void()> cancelled) override;
  void about(QWidget* parent, const QString& title, const QString& text) override;

  // The path with the suffix added unless it already ends in it (or, for
  // "tiff", in the short form ".tif"), ignoring case.
  static QString withSuffix(const QString& path, const QString& suffix);

  // The folder the next file panel starts in: the folder of the file last
  // chosen in any of them (empty before the first: the working folder).
  QString startFolder() const { return lastFolder_; }
  void noteChosenFile(const QString& path);

 private:
  // Runs a file dialog in the folder last used and remembers the folder
  // of the file chosen; the first path chosen, or nothing on cancel.
  std::optional<QString> runFileDialog(QFileDialog& dialog);

  // Kept for this run of the program only: it stores no preferences.
  QString lastFolder_;
  MovieChoice lastMovie_;
};
