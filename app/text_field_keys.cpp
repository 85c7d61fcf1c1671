#include "text_field_keys.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextEdit>

namespace {

bool isTextField(const QObject* object) {
  return qobject_cast<const QLineEdit*>(object) != nullptr ||
         qobject_cast<const QPlainTextEdit*>(object) != nullptr ||
         qobject_cast<const QTextEdit*>(object) != nullptr ||
         qobject_cast<const QAbstractSpinBox*>(object) != nullptr;
}

}  // namespace

TextFieldKeys::TextFieldKeys(QObject* parent) : QObject(parent) {
  qApp->installEventFilter(this);
}

bool TextFieldKeys::isTextKey(const QKeyEvent& event) {
  const Qt::KeyboardModifiers modifiers =
      event.modifiers() & ~(Qt::KeypadModifier | Qt::ShiftModifier);
  if (modifiers != Qt::ControlModifier) {
    return false;
  }
  switch (event.key()) {
    case Qt::Key_Backspace:
    case Qt::Key_Delete:
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Home:
    case Qt::Key_End:
    case Qt::Key_BracketLeft:
    case Qt::Key_BracketRight:
    case Qt::Key_Equal:
    case Qt::Key_Plus:
    case Qt::Key_Minus:
      return true;
    default:
      return false;
  }
}

bool TextFieldKeys::eventFilter(QObject* watched, QEvent* event) {
  // Accepting the override makes the key a plain key press for the field
  // instead of a shortcut.
  if (event->type() == QEvent::ShortcutOverride && isTextField(watched) &&
      watched == QApplication::focusWidget() && isTextKey(*static_cast<QKeyEvent*>(event))) {
    event->accept();
    return true;
  }
  return QObject::eventFilter(watched, event);
}
