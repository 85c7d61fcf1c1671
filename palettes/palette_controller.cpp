#include "palettes/palette_controller.h"

#include <QApplication>
#include <QComboBox>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>

#include "engine/vector.h"
#include "palettes/color_well.h"
#include "palettes/number_text.h"
#include "palettes/palette_window.h"
#include "view/timer_pause.h"

namespace {

// 0.2 s in single precision is 0.20000000298023224 s; QTimer counts whole
// milliseconds, so the palettes refresh every 200 ms.
constexpr int kRefreshIntervalMs = 200;

// A text field's frame and inner margins, beside its text.
constexpr int kFieldMargins = 12;

}  // namespace

PaletteController::PaletteController(const QString& windowName, const QString& title,
                                     QObject* parent)
    : QObject(parent), window_(std::make_unique<PaletteWindow>(windowName, title)) {
  layout_ = window_->contentLayout();
  window_->onUserClose = [this] { windowWillClose(); };
  // The palette losing key status ends the editing guard.
  window_->onDeactivate = [this] { selectedControl_ = nullptr; };
}

PaletteController::~PaletteController() {
  becomeInvisible();
  // The fields go with the window; nothing may reach them afterwards.
  selectedControl_ = nullptr;
  editedField_ = nullptr;
  window_.reset();
}

QWidget* PaletteController::window() const {
  return window_.get();
}

void PaletteController::becomeVisible() {
  if (!timerExists_) {
    refreshDataTimer_ = new QTimer(this);
    refreshDataTimer_->setInterval(kRefreshIntervalMs);
    connect(refreshDataTimer_, &QTimer::timeout, this, &PaletteController::updateControls);
    refreshDataTimer_->start();
    timerExists_ = true;
  }
  willBecomeVisible();
  getValues();
}

void PaletteController::becomeInvisible() {
  if (timerExists_) {
    delete refreshDataTimer_;
    refreshDataTimer_ = nullptr;
    timerExists_ = false;
  }
}

void PaletteController::updateControls() {
  if (timersArePaused()) {
    return;
  }
  getValues();
}

QLineEdit* PaletteController::makeTextField(const char* name) {
  auto* field = new QLineEdit;
  field->setObjectName(QString::fromLatin1(name));
  field->installEventFilter(this);
  connect(field, &QLineEdit::textEdited, this, [this, field] { beginEditing(field); });
  // Return commits only what the user typed: a field that was merely
  // clicked into still shows the model, and storing its shortened "%g" text
  // would move the body back.
  connect(field, &QLineEdit::returnPressed, this, [this, field] {
    if (editedField_ == field) {
      commitField(field);
    }
  });
  return field;
}

QLineEdit* PaletteController::makeReadOnlyField(const char* name) {
  auto* field = new QLineEdit;
  field->setObjectName(QString::fromLatin1(name));
  field->setReadOnly(true);
  // Without a frame a shown-only value does not look like something to edit;
  // it can still be selected and copied.
  field->setFrame(false);
  field->setFocusPolicy(Qt::ClickFocus);
  return field;
}

QComboBox* PaletteController::makePopUp(
    const char* name, std::initializer_list<std::pair<const char*, QString>> items) {
  auto* popUp = new QComboBox;
  popUp->setObjectName(QString::fromLatin1(name));
  for (const auto& [itemName, title] : items) {
    popUp->addItem(title, QString::fromLatin1(itemName));
  }
  // activated is the user's choice only; the refresh selecting items does
  // not commit anything.
  connect(popUp, &QComboBox::activated, this, [this, popUp] { setValues(popUp); });
  return popUp;
}

ColorWell* PaletteController::makeColorWell(const char* name) {
  auto* well = new ColorWell;
  well->setObjectName(QString::fromLatin1(name));
  connect(well, &ColorWell::colorChosen, this, [this, well] { setValues(well); });
  return well;
}

QWidget* PaletteController::makeRow(std::initializer_list<QWidget*> controls) {
  auto* row = new QWidget;
  auto* layout = new QHBoxLayout(row);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(4);
  for (QWidget* control : controls) {
    // Three fields share one row; each is wide enough for any "%g" value
    // (at most 12 characters, as in -1.23457e-05).
    control->setMinimumWidth(QFontMetrics(control->font()).horizontalAdvance(QString(12, '8')) +
                             kFieldMargins);
    control->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    layout->addWidget(control);
  }
  return row;
}

void PaletteController::showText(QLineEdit* field, const QString& text) {
  if (field != selectedControl_ && field->text() != text) {
    // A field too narrow for its text shows the text's start (the sign and
    // leading digits), unless the user has put the cursor somewhere in it.
    const int cursor = field->cursorPosition();
    field->setText(text);
    field->setCursorPosition(field->hasFocus() ? std::min(cursor, static_cast<int>(text.size()))
                                               : 0);
  }
}

void PaletteController::showVector(QLineEdit* x, QLineEdit* y, QLineEdit* z, const Vector& v) {
  showText(x, formatReal(v.x));
  showText(y, formatReal(v.y));
  showText(z, formatReal(v.z));
}

bool PaletteController::readVectorComponent(const QObject* sender, const QLineEdit* x,
                                            const QLineEdit* y, const QLineEdit* z, Vector& v) {
  double* component = sender == x ? &v.x : sender == y ? &v.y : sender == z ? &v.z : nullptr;
  if (component == nullptr) {
    return false;
  }
  *component = readReal(static_cast<const QLineEdit*>(sender)->text());
  return true;
}

void PaletteController::showReadOnlyText(QLineEdit* field, const QString& text) {
  if (field->text() != text) {
    field->setText(text);
    if (!field->hasFocus()) {
      field->setCursorPosition(0);
    }
  }
}

void PaletteController::selectItem(QComboBox* popUp, const char* itemName) {
  const int index = popUp->findData(QString::fromLatin1(itemName));
  if (index != popUp->currentIndex()) {
    popUp->setCurrentIndex(index);
  }
}

bool PaletteController::itemSelected(const QComboBox* popUp, const char* itemName) {
  return popUp->currentData().toString() == QLatin1String(itemName);
}

void PaletteController::showFlag(QComboBox* popUp, bool flag, const char* trueItem,
                                 const char* falseItem) {
  selectItem(popUp, flag ? trueItem : falseItem);
}

void PaletteController::readFlag(const QComboBox* popUp, const char* trueItem,
                                 const char* falseItem, bool& flag) {
  if (itemSelected(popUp, trueItem)) {
    flag = true;
  } else if (itemSelected(popUp, falseItem)) {
    flag = false;
  }
}

void PaletteController::setControlEnabled(QWidget* control, bool enabled) {
  if (control->isEnabled() != enabled) {
    control->setEnabled(enabled);
  }
  if (enabled) {
    return;
  }
  if (auto* field = qobject_cast<QLineEdit*>(control)) {
    if (!field->text().isEmpty()) {
      field->clear();
    }
  } else if (auto* popUp = qobject_cast<QComboBox*>(control)) {
    popUp->setCurrentIndex(-1);
  } else if (auto* well = qobject_cast<ColorWell*>(control)) {
    well->clearColor();
  }
}

void PaletteController::beginEditing(QLineEdit* field) {
  // Only one field is edited at a time; one left without a focus change (for
  // example by synthesised typing) is committed before the next one starts.
  if (editedField_ != nullptr && editedField_ != field) {
    commitField(editedField_);
  }
  editedField_ = field;
  selectedControl_ = field;
}

void PaletteController::commitField(QLineEdit* field) {
  if (editedField_ == field) {
    editedField_ = nullptr;
  }
  if (selectedControl_ == field) {
    selectedControl_ = nullptr;
  }
  // A field loses focus while it is being disabled (its model object has
  // gone); there is nothing left to commit to.
  if (!field->isEnabled()) {
    return;
  }
  setValues(field);
}

void PaletteController::discardEditing(QLineEdit* field) {
  if (editedField_ == field) {
    editedField_ = nullptr;
  }
  selectedControl_ = nullptr;
  getValues();
}

bool PaletteController::eventFilter(QObject* watched, QEvent* event) {
  auto* field = qobject_cast<QLineEdit*>(watched);
  if (field == nullptr) {
    return QObject::eventFilter(watched, event);
  }
  switch (event->type()) {
    case QEvent::FocusOut:
      if (editedField_ == field) {
        commitField(field);
      } else if (selectedControl_ == field) {
        selectedControl_ = nullptr;
      }
      break;
    case QEvent::KeyPress:
      if (static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        discardEditing(field);
        return true;
      }
      break;
    default:
      break;
  }
  return QObject::eventFilter(watched, event);
}
