#pragma once

#include <QObject>
#include <QString>
#include <cassert>
#include <initializer_list>
#include <memory>
#include <optional>
#include <span>
#include <utility>

#include "engine/field_table.h"

class ColorWell;
class PaletteHost;
class PaletteWindow;
class QFormLayout;
class QComboBox;
class QLineEdit;
class QTimer;
class QVBoxLayout;
class QWidget;

// A palette control bound to one value of a row of a field table: a text
// field for a number or a name (for a vector, one of its components), a
// pop-up for a flag (its true and false items) or a choice (one item named as
// each choice), or a colour well for a colour.
template <typename R>
struct FieldControl {
  QWidget* control = nullptr;
  const Field<R>* field = nullptr;
  int component = 0;
  const char* trueItem = nullptr;
  const char* falseItem = nullptr;
};

// The row of a table whose member is the given one.
template <typename R, typename M>
const Field<R>* fieldOf(std::span<const Field<R>> table, M member) {
  const std::size_t row = fieldRow(table, member);
  assert(row < table.size());
  return &table[row];
}

// What the three inspector palettes share: a tool window, the refresh timer
// that copies the model into the controls while the palette is visible, the
// guard that keeps the refresh away from the text field being typed into,
// and the commit of one control at a time back into the model.
//
// A text field commits when the user presses Return, and when editing ends by
// leaving the field (Tab, a click elsewhere, another window) provided its
// text was changed: passing through a field without typing must not store
// the six-digit value it shows in place of the full-precision one. Escape
// drops the typed text and shows the model's value again.
class PaletteController : public QObject {
  Q_OBJECT

 public:
  ~PaletteController() override;
  PaletteController(const PaletteController&) = delete;
  PaletteController& operator=(const PaletteController&) = delete;

  // The palette's top-level tool window.
  QWidget* window() const;

  // Starts the refresh timer (once) and fills the controls at once.
  void becomeVisible();
  // Stops the refresh timer; a hidden palette costs nothing.
  void becomeInvisible();

  // Copies the model into the controls, fetching the model afresh.
  virtual void getValues() = 0;

 protected:
  // The host outlives the palette.
  PaletteController(PaletteHost& host, const QString& windowName, const QString& title,
                    QObject* parent);

  PaletteHost& host_;

  // Copies the committed control's value into the model, then getValues.
  virtual void setValues(QObject* sender) = 0;
  // Sends the controller's toggle for this palette with the palette as sender.
  virtual void windowWillClose() = 0;
  // Runs in becomeVisible between starting the timer and the first getValues.
  virtual void willBecomeVisible() {}

  // Control builders: each names the control as the model field it shows and
  // connects its commit to setValues.
  QLineEdit* makeTextField(const char* name);
  QLineEdit* makeReadOnlyField(const char* name);
  // Items are (name, title); the name is kept as the item's data, and the
  // palette refers to items only by name.
  QComboBox* makePopUp(const char* name,
                       std::initializer_list<std::pair<const char*, QString>> items);
  ColorWell* makeColorWell(const char* name);
  // Lays out controls side by side, for the x, y and z of one vector.
  static QWidget* makeRow(std::initializer_list<QWidget*> controls);

  // Shows text in an editable field unless the user is editing it; changes
  // the field only when the text differs, so cursor and selection survive.
  void showText(QLineEdit* field, const QString& text);
  // Read-only fields refresh even while one of them is selected.
  static void showReadOnlyText(QLineEdit* field, const QString& text);
  static void selectItem(QComboBox* popUp, const char* itemName);
  static bool itemSelected(const QComboBox* popUp, const char* itemName);
  // A pop-up that stands for a boolean: selects the true or the false item,
  // and reads back true or false, leaving the flag alone when neither item
  // is selected.
  static void showFlag(QComboBox* popUp, bool flag, const char* trueItem, const char* falseItem);
  static void readFlag(const QComboBox* popUp, const char* trueItem, const char* falseItem,
                       bool& flag);
  // Disables a control; when disabling, also blanks what it shows.
  static void setControlEnabled(QWidget* control, bool enabled);

  // The x, y and z fields of one vector: show it, or commit the one field
  // that is the sender (true if it was one of them).
  void showVector(QLineEdit* x, QLineEdit* y, QLineEdit* z, const Vector& v);
  static bool readVectorComponent(const QObject* sender, const QLineEdit* x, const QLineEdit* y,
                                  const QLineEdit* z, Vector& v);

  // A text field bound to a field of a table: one component of a vector,
  // or a number or a name. A pop-up for a choice has one item per choice,
  // named and titled as the choice.
  template <typename R>
  static FieldControl<R> fieldControl(QWidget* control, const Field<R>* field, int component = 0) {
    return {control, field, component, nullptr, nullptr};
  }
  // A pop-up bound to a flag, by its true and false items.
  template <typename R>
  static FieldControl<R> flagControl(QWidget* popUp, const Field<R>* field, const char* trueItem,
                                     const char* falseItem) {
    return {popUp, field, 0, trueItem, falseItem};
  }
  QComboBox* makeChoicePopUp(const char* name, std::span<const std::string_view> choices);
  // Adds a row to a form: the field's label, then the controls side by side.
  template <typename R>
  void addFieldRow(QFormLayout* form, const Field<R>& field,
                   std::initializer_list<QWidget*> controls) {
    addLabelledRow(
        form, QString::fromUtf8(field.label.data(), static_cast<qsizetype>(field.label.size())),
        controls);
  }

  // Shows the record's value of a bound control (a text field that is being
  // edited keeps its text). A value the record cannot use is marked with a
  // warning colour and a tooltip that says what happens; a field that has no
  // effect on the record as it stands is disabled, its tooltip saying why.
  template <typename R>
  void showField(const FieldControl<R>& c, const R& record) {
    const auto rule = c.field->unusedBecause;
    showValue(c.control, describe(c), readField(*c.field, record), rule != nullptr,
              rule != nullptr ? rule(record) : nullptr);
  }
  // Writes a bound control's value into the record. A value the field
  // refuses is not written (the refresh that follows shows the record's value
  // again); false then.
  template <typename R>
  bool commitField(const FieldControl<R>& c, R& record) {
    const std::optional<FieldValue> value = controlValue(c, record);
    if (value) {
      writeField(*c.field, *value, record);
    }
    return value.has_value();
  }
  // The value a bound control holds, as commitField would write it; nothing
  // when the field refuses it.
  template <typename R>
  std::optional<FieldValue> controlValue(const FieldControl<R>& c, const R& record) const {
    return readValue(c.control, describe(c), readField(*c.field, record));
  }
  // The bound control that is the sender, or null.
  template <typename R>
  static const FieldControl<R>* controlOf(std::span<const FieldControl<R>> controls,
                                          const QObject* sender) {
    for (const FieldControl<R>& c : controls) {
      if (c.control == sender) {
        return &c;
      }
    }
    return nullptr;
  }

  QLineEdit* selectedControl() const { return selectedControl_; }
  QVBoxLayout* windowLayout() const { return layout_; }

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  // What showing and reading a bound control needs of its row.
  struct ControlShape {
    FieldType type;
    int component;
    const char* trueItem;
    const char* falseItem;
    std::span<const std::string_view> choices;
    FieldProblem warning;
    FieldProblem refusal;
    double (*bound)(double);
    std::string_view help;
  };
  template <typename R>
  static ControlShape describe(const FieldControl<R>& c) {
    const Field<R>& f = *c.field;
    std::span<const std::string_view> choices;
    if (const auto* choice = std::get_if<ChoiceMember<R>>(&f.member)) {
      choices = choice->names;
    }
    return {f.type(),  c.component, c.trueItem, c.falseItem, choices,
            f.warning, f.refusal,   f.bound,    f.help};
  }
  void showValue(QWidget* control, const ControlShape& shape, const FieldValue& value,
                 bool hasUseRule, const char* unusedBecause);
  std::optional<FieldValue> readValue(QWidget* control, const ControlShape& shape,
                                      const FieldValue& current) const;
  void addLabelledRow(QFormLayout* form, const QString& label,
                      std::initializer_list<QWidget*> controls);

  void updateControls();
  void beginEditing(QLineEdit* field);
  void commitField(QLineEdit* field);
  void discardEditing(QLineEdit* field);

  std::unique_ptr<PaletteWindow> window_;
  QVBoxLayout* layout_ = nullptr;
  QTimer* refreshDataTimer_ = nullptr;
  bool timerExists_ = false;
  // The field that the refresh leaves alone: the one the user is in.
  QLineEdit* selectedControl_ = nullptr;
  // The field whose text the user has changed since its last commit.
  QLineEdit* editedField_ = nullptr;
};
