#pragma once

#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenuBar>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QWidget>
#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "close_box.h"
#include "engine/names.h"
#include "engine/world.h"
#include "palettes/color_well.h"
#include "palettes/palette_host.h"
#include "palettes/panels.h"
#include "scripted_panels.h"
#include "view/view.h"

// Stands in for the application controller: a real world, a view record
// the test supplies, flags the test sets, and every command the palettes
// send.
class PaletteTestHost : public PaletteHost {
 public:
  PaletteTestHost() = default;
  PaletteTestHost(const PaletteTestHost&) = delete;
  PaletteTestHost& operator=(const PaletteTestHost&) = delete;

  World& world() override { return w; }
  int panType() const override { return kPanTypeXY; }
  bool running() const override { return isRunning; }
  bool editing() const override { return isEditing; }
  Panels* panels() override { return &dialogs; }
  View* currentView() override { return view; }
  QWidget* currentViewWindow() override { return view != nullptr ? viewWindow : nullptr; }
  void setWindowTitleAndMinSize(QWidget* window, const QString& title) override {
    window->setWindowTitle(title);
  }

  void toggleSim(QObject* sender) override { commands.push_back({"toggleSim", sender}); }
  void stepSim(QObject* sender) override {
    commands.push_back({"stepSim", sender});
    w.step();
  }
  void edit(QObject* sender) override { commands.push_back({"edit", sender}); }
  void newBody(QObject* sender) override { commands.push_back({"newBody", sender}); }
  void setWorldSpeed(float millisecondsPerUpdate) override {
    commands.push_back({"setWorldSpeed", nullptr});
    w.millisecondsPerUpdate = millisecondsPerUpdate;
  }
  void worldRenameBody(Body* body, std::string_view newName) override {
    commands.push_back({"worldRenameBody", nullptr});
    renamedTo = std::string(newName);
    copyName(body->name, newName);
  }

  void showSimulationPaletteFromMenu(QObject* sender) override { toggle(sender); }
  void showViewPaletteFromMenu(QObject* sender) override { toggle(sender); }
  void showBodyPaletteFromMenu(QObject* sender) override { toggle(sender); }
  void showOutputPaletteFromMenu(QObject* sender) override { toggle(sender); }
  void showGraphsPaletteFromMenu(QObject* sender) override { toggle(sender); }

  void populateMenuBar(QMenuBar* bar) override { bar->addMenu(QStringLiteral("Simulation")); }

  auto count(const std::string& command) const {
    return std::count_if(commands.begin(), commands.end(),
                         [&](const Command& c) { return c.name == command; });
  }

  struct Command {
    std::string name;
    QObject* sender;
  };
  std::vector<Command> commands;
  std::vector<QObject*> toggles;
  std::function<void(QObject* sender)> onToggle;

  World w;
  ScriptedPanels dialogs;
  bool isRunning = false;
  bool isEditing = false;
  View* view = nullptr;
  QWidget* viewWindow = nullptr;
  std::string renamedTo;

 private:
  void toggle(QObject* sender) {
    toggles.push_back(sender);
    if (onToggle)
      onToggle(sender);
  }
};

// gtest prints QStrings as text.
inline void PrintTo(const QString& s, std::ostream* os) {
  *os << '"' << s.toStdString() << '"';
}

inline QLineEdit* field(QWidget* window, const char* name) {
  auto* f = window->findChild<QLineEdit*>(QString::fromLatin1(name));
  EXPECT_NE(f, nullptr) << name;
  return f;
}

inline QComboBox* popUp(QWidget* window, const char* name) {
  auto* p = window->findChild<QComboBox*>(QString::fromLatin1(name));
  EXPECT_NE(p, nullptr) << name;
  return p;
}

inline std::string selectedItem(QComboBox* p) {
  return p->currentData().toString().toStdString();
}

// Replaces the field's text by typing, as a user who selected it all would.
inline void typeInto(QLineEdit* f, const QString& text) {
  f->selectAll();
  if (text.isEmpty()) {
    QTest::keyClick(f, Qt::Key_Delete);
  } else if (text.size() > 100 ||
             !std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 128; })) {
    // QTest types ASCII only; a long or non-ASCII text arrives as one key
    // event carrying it, as from an input method or a paste.
    QKeyEvent key(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, text);
    QApplication::sendEvent(f, &key);
  } else {
    QTest::keyClicks(f, text);
  }
}

inline void enter(QLineEdit* f, const QString& text) {
  typeInto(f, text);
  QTest::keyClick(f, Qt::Key_Return);
}

// Opens the pop-up's list and clicks the named item, as a user does.
inline void chooseItem(QComboBox* p, const char* itemName) {
  const int index = p->findData(QString::fromLatin1(itemName));
  ASSERT_GE(index, 0) << itemName;
  p->showPopup();
  QAbstractItemView* list = p->view();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(list->window()));
  const QRect rect = list->visualRect(list->model()->index(index, 0));
  QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, rect.center());
  ASSERT_TRUE(QTest::qWaitFor([list] { return !list->isVisible(); }, 5000));
}

// Checks that every field, pop-up and colour well of the window is disabled
// and shows nothing; returns how many there are.
inline int expectEmptyAndDisabled(const QWidget* window) {
  int controls = 0;
  for (QWidget* w : window->findChildren<QWidget*>()) {
    if (auto* e = qobject_cast<QLineEdit*>(w)) {
      EXPECT_TRUE(e->text().isEmpty()) << e->objectName().toStdString();
    } else if (auto* p = qobject_cast<QComboBox*>(w)) {
      EXPECT_EQ(p->currentIndex(), -1) << p->objectName().toStdString();
    } else if (auto* c = qobject_cast<ColorWell*>(w)) {
      EXPECT_FALSE(c->hasColor()) << c->objectName().toStdString();
    } else {
      continue;
    }
    EXPECT_FALSE(w->isEnabled()) << w->objectName().toStdString();
    ++controls;
  }
  return controls;
}

// The palette's running refresh timer, or null while it has none.
inline QTimer* refreshTimer(const QObject& palette) {
  for (QTimer* t : palette.findChildren<QTimer*>()) {
    if (t->isActive() && t->interval() == 200) {
      return t;
    }
  }
  return nullptr;
}

// Waits until the palette's refresh timer has fired n more times; its own
// refresh runs first, as it was connected first. False without a timer.
inline bool waitForRefreshes(const QObject& palette, int n = 2) {
  QTimer* timer = refreshTimer(palette);
  if (timer == nullptr) {
    return false;
  }
  QSignalSpy ticks(timer, &QTimer::timeout);
  return QTest::qWaitFor([&] { return ticks.count() >= n; }, 5000);
}

// A palette on a test host whose toggles all reach it, with a view record
// and a stand-in view window the palette may be given (host.view).
template <typename Palette>
class PaletteTest : public testing::Test {
 protected:
  // The controller's toggle: hiding stops the refresh timer (inspectors
  // only) and closes the window unless the palette itself is closing it.
  PaletteTest() {
    host.onToggle = [this](QObject* sender) {
      visible = !visible;
      if constexpr (requires { palette.becomeVisible(); })
        visible ? palette.becomeVisible() : palette.becomeInvisible();
      if (visible)
        palette.window()->show();
      else if (sender != &palette)
        palette.window()->close();
    };
  }
  // Shows the palette through its toggle, as the menu does.
  void show() {
    host.showViewPaletteFromMenu(nullptr);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(win));
  }
  QLineEdit* f(const char* name) { return field(win, name); }
  void giveView() {
    host.view = &view;
    host.viewWindow = &viewWindow;
  }

  PaletteTestHost host;
  ScriptedPanels& dialogs = host.dialogs;
  View view{0};
  QWidget viewWindow;
  Palette palette{host};
  QWidget* win = palette.window();
  bool visible = false;
};
