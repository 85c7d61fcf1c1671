#include "palettes/palette_controller.h"

#include <QApplication>
#include <QComboBox>
#include <QFontMetrics>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>

#include "document/plist_value.h"
#include "engine/vector.h"
#include "palettes/color_well.h"
#include "palettes/number_text.h"
#include "palettes/palette_host.h"
#include "palettes/palette_window.h"
#include "view/timer_pause.h"

namespace {

// 0.2 s in single precision is 0.20000000298023224 s; QTimer counts whole
// milliseconds, so the palettes refresh every 200 ms.
constexpr int kRefreshIntervalMs = 200;

// A text field's frame and inner margins, beside its text.
constexpr int kFieldMargins = 12;

}  // namespace

PaletteController::PaletteController(PaletteHost& host, const QString& windowName,
                                     const QString& title, QObject* parent)
    : QObject(parent),
      host_(host),
      window_(std::make_unique<PaletteWindow>(windowName, title, host)) {
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
  auto* well = new ColorWell(host_.panels());
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

QComboBox* PaletteController::makeChoicePopUp(const char* name,
                                              std::span<const std::string_view> choices) {
  QComboBox* popUp = makePopUp(name, {});
  for (std::string_view choice : choices) {
    const QString text = QString::fromUtf8(choice.data(), static_cast<qsizetype>(choice.size()));
    popUp->addItem(text, text);
  }
  return popUp;
}

void PaletteController::addLabelledRow(QFormLayout* form, const QString& label,
                                       std::initializer_list<QWidget*> controls) {
  form->addRow(tr(label.toUtf8().constData()),
               controls.size() == 1 ? *controls.begin() : makeRow(controls));
}

namespace {

// The number a warning judges: a vector's shown component, or the value.
double numberOf(const FieldValue& value, int component) {
  return std::visit(
      [component](const auto& v) {
        using T = std::decay_t<decltype(v)>;
        if constexpr (std::is_same_v<T, Vector>) {
          return component == 0 ? v.x : component == 1 ? v.y : v.z;
        } else if constexpr (std::is_arithmetic_v<T>) {
          return static_cast<double>(v);
        } else {
          return 0.0;
        }
      },
      value);
}

QString text(std::string_view s) {
  return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size()));
}

// Marks a text field whose value the world cannot use: the warning colour
// behind its text and the reason as its tooltip.
void markWarning(QWidget* control, const char* problem, std::string_view help) {
  const QString tip = problem != nullptr ? QString::fromUtf8(problem) : text(help);
  if (control->toolTip() != tip) {
    control->setToolTip(tip);
  }
  const bool marked = problem != nullptr;
  if (control->property("warning").toBool() != marked) {
    control->setProperty("warning", marked);
    QPalette palette = control->parentWidget() != nullptr ? control->parentWidget()->palette()
                                                          : QApplication::palette();
    if (marked) {
      palette.setColor(QPalette::Base, QColor(255, 214, 153));
    }
    control->setPalette(palette);
  }
}

}  // namespace

void PaletteController::showValue(QWidget* control, const ControlShape& shape,
                                  const FieldValue& value, bool hasUseRule,
                                  const char* unusedBecause) {
  // A field that does nothing for the record as it stands is disabled but
  // still shows its value, which takes effect once the field applies. Only
  // fields with such a rule are enabled here; the others keep the state
  // their palette gives them.
  const bool used = unusedBecause == nullptr;
  if (hasUseRule && control->isEnabled() != used) {
    control->setEnabled(used);
  }
  if (auto* field = qobject_cast<QLineEdit*>(control)) {
    QString shown;
    switch (shape.type) {
      case FieldType::Name:
        shown = QString::fromStdString(std::get<std::string>(value));
        break;
      case FieldType::Integer:
        shown = formatInt(std::get<int32_t>(value));
        break;
      default:
        shown = formatReal(numberOf(value, shape.component));
    }
    showText(field, shown);
    const char* problem =
        shape.warning != nullptr ? shape.warning(numberOf(value, shape.component)) : nullptr;
    markWarning(field, used ? problem : nullptr, used ? shape.help : unusedBecause);
  } else if (auto* popUp = qobject_cast<QComboBox*>(control)) {
    if (shape.type == FieldType::Flag) {
      showFlag(popUp, std::get<bool>(value), shape.trueItem, shape.falseItem);
    } else {
      const auto index = static_cast<std::size_t>(std::get<int32_t>(value));
      if (index < shape.choices.size()) {
        selectItem(popUp, text(shape.choices[index]).toUtf8().constData());
      }
    }
    const QString tip = used ? text(shape.help) : QString::fromUtf8(unusedBecause);
    if (popUp->toolTip() != tip) {
      popUp->setToolTip(tip);
    }
  } else if (auto* well = qobject_cast<ColorWell*>(control)) {
    const auto& c = std::get<std::array<float, 3>>(value);
    const float rgb[3] = {c[0], c[1], c[2]};
    well->setComponents(rgb);
  }
}

std::optional<FieldValue> PaletteController::readValue(QWidget* control, const ControlShape& shape,
                                                       const FieldValue& current) const {
  const auto refused = [&](double v) {
    return shape.refusal != nullptr && shape.refusal(v) != nullptr;
  };
  const auto bounded = [&](double v) { return shape.bound != nullptr ? shape.bound(v) : v; };
  if (auto* field = qobject_cast<QLineEdit*>(control)) {
    switch (shape.type) {
      case FieldType::Name:
        return field->text().toStdString();
      case FieldType::Integer: {
        const int32_t i = readInt(field->text());
        return refused(i) ? std::nullopt : std::optional<FieldValue>(i);
      }
      case FieldType::Single: {
        const double v = static_cast<double>(narrowToFloat(readReal(field->text())));
        return refused(v) ? std::nullopt
                          : std::optional<FieldValue>(static_cast<float>(bounded(v)));
      }
      case FieldType::Vector: {
        Vector v = std::get<Vector>(current);
        const double r = readReal(field->text());
        (shape.component == 0 ? v.x : shape.component == 1 ? v.y : v.z) = r;
        return v;
      }
      default: {
        const double v = readReal(field->text());
        return refused(v) ? std::nullopt : std::optional<FieldValue>(bounded(v));
      }
    }
  }
  if (auto* popUp = qobject_cast<QComboBox*>(control)) {
    if (shape.type == FieldType::Flag) {
      bool flag = std::get<bool>(current);
      readFlag(popUp, shape.trueItem, shape.falseItem, flag);
      return flag;
    }
    const QByteArray chosen = popUp->currentData().toString().toUtf8();
    if (const auto index = choiceNamed(
            shape.choices,
            std::string_view(chosen.constData(), static_cast<std::size_t>(chosen.size())), false)) {
      return *index;
    }
    return std::nullopt;
  }
  if (auto* well = qobject_cast<ColorWell*>(control)) {
    return well->components();
  }
  return std::nullopt;
}
