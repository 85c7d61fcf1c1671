#pragma once

#include <QObject>
#include <QString>
#include <initializer_list>
#include <memory>
#include <utility>

class ColorWell;
class Vector;
class PaletteWindow;
class QComboBox;
class QLineEdit;
class QTimer;
class QVBoxLayout;
class QWidget;

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
  PaletteController(const QString& windowName, const QString& title, QObject* parent);

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

  QLineEdit* selectedControl() const { return selectedControl_; }
  QVBoxLayout* windowLayout() const { return layout_; }

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
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
