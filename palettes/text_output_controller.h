#pragma once

#include <QObject>
#include <memory>
#include <string>

#include "document/log_store.h"

class PaletteHost;
class PaletteWindow;
class QLabel;
class QPlainTextEdit;
class QPushButton;
class QTimer;
class QWidget;

// The text output palette: while logging is on, the controller pushes one
// line of body states per simulation step into it; the user can clear the
// log and save it as a text file. It has no refresh timer.
class TextOutputController : public QObject {
  Q_OBJECT

 public:
  // The host outlives the palette.
  explicit TextOutputController(PaletteHost& host, QObject* parent = nullptr);
  ~TextOutputController() override;
  TextOutputController(const TextOutputController&) = delete;
  TextOutputController& operator=(const TextOutputController&) = delete;

  QWidget* window() const;
  bool wantsText() const { return wantsText_; }
  // Appends one line for the host's world as it stands.
  void writeLine();
  // The whole log, byte for byte as it is saved (UTF-8). It may be large:
  // for tests and small logs.
  std::string text() const { return log_.contents(); }
  int64_t lineCount() const { return log_.lineCount(); }

  void clickBegin(QObject* sender);
  void clickEnd(QObject* sender);
  void clickClear(QObject* sender);
  void clickSave(QObject* sender);

 private:
  void showPendingText();
  void showLineCount();

  PaletteHost& host_;
  std::unique_ptr<PaletteWindow> window_;
  QPlainTextEdit* viewtext_ = nullptr;
  QPushButton* begin_ = nullptr;
  QPushButton* end_ = nullptr;
  QPushButton* clear_ = nullptr;
  QPushButton* save_ = nullptr;
  QLabel* status_ = nullptr;
  QTimer* showTimer_ = nullptr;
  bool wantsText_ = false;
  // The log is kept as its own bytes: the text view would turn some
  // characters of body names (no-break spaces, line separators) into others.
  // Most of it lives in a temporary file; the text view shows only the
  // newest lines.
  LogStore log_;
  // The line being formed, and lines not yet in the text view.
  std::string line_;
  std::string unshown_;
  int64_t shownLines_ = 0;
};
