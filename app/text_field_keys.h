#pragma once

#include <QObject>

class QKeyEvent;

// Keeps the keys that edit or move through text with a field while a text
// field has the keyboard focus: Ctrl+Backspace deletes a word there and
// Ctrl+arrows move by words, instead of deleting the selected body or
// panning a view. The menus' other keys (Ctrl+Q, Ctrl+S, ...) still work.
// Installed on the application, so it holds in every window.
class TextFieldKeys : public QObject {
  Q_OBJECT

 public:
  explicit TextFieldKeys(QObject* parent = nullptr);

  // True for a key that a focused text field keeps from the menus.
  static bool isTextKey(const QKeyEvent& event);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
};
