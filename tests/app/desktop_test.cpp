// The application on a desktop with a window manager (run through
// with_window_manager.sh): real dialogs, real stacking, activation by the
// pointer and keys typed through the X server, as a user meets them.
#include <gtest/gtest.h>

#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QMenuBar>
#include <QProcess>
#include <QProgressDialog>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTemporaryDir>
#include <algorithm>
#include <functional>

#include "app/qt_panels.h"
#include "app/splash_window.h"
#include "app_test_support.h"
#include "tests/palettes/close_box.h"
#include "view/orrenvale_gl.h"

// Waits, as the event loop runs, until the condition holds (a failure after
// five seconds). QTestLib's own QTRY macros report to QTestLib, not here.
#define WAIT_UNTIL(condition) \
  ASSERT_TRUE(QTest::qWaitFor([&] { return (condition); }, 5000)) << #condition

namespace {

// The windows the window manager manages, bottom to top.
std::vector<xcb_window_t> stackingOrder() {
  xcb_connection_t* c = xConnection();
  const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(c)).data->root;
  xcb_get_property_reply_t* reply =
      xcb_get_property_reply(c,
                             xcb_get_property(c, 0, root, internAtom("_NET_CLIENT_LIST_STACKING"),
                                              XCB_ATOM_WINDOW, 0, 4096),
                             nullptr);
  std::vector<xcb_window_t> order;
  if (reply != nullptr) {
    const auto* windows = static_cast<const xcb_window_t*>(xcb_get_property_value(reply));
    order.assign(windows, windows + xcb_get_property_value_length(reply) / 4);
  }
  std::free(reply);
  return order;
}

// Where the window stands in the stacking order (higher is nearer the
// user), or -1 while the window manager does not list it.
int stackIndex(const QWidget* window) {
  const std::vector<xcb_window_t> order = stackingOrder();
  const auto at = std::find(order.begin(), order.end(), static_cast<xcb_window_t>(window->winId()));
  return at == order.end() ? -1 : static_cast<int>(at - order.begin());
}

void xdotool(const QStringList& args) {
  ASSERT_EQ(QProcess::execute(QStringLiteral("xdotool"), args), 0) << args.join(' ').toStdString();
}

// A real click through the X server at a point of a widget.
void clickAt(const QWidget* widget, QPoint local) {
  const QPoint at = widget->mapToGlobal(local);
  xdotool({"mousemove", "--sync", QString::number(at.x()), QString::number(at.y()), "click", "1"});
}

void clickCentre(const QWidget* widget) {
  clickAt(widget, widget->rect().center());
}

void typeKeys(const QStringList& keys) {
  xdotool(QStringList{"key", "--clearmodifiers"} + keys);
}

// Runs check on the first modal dialog to appear once the window manager
// has stacked and focused it, then closes the dialog with close.
void whenModalDialogShows(const std::function<void(QWidget*)>& check,
                          const std::function<void(QWidget*)>& close) {
  auto* poll = new QTimer;
  poll->setInterval(20);
  QObject::connect(poll, &QTimer::timeout, [poll, check, close] {
    QWidget* dialog = QApplication::activeModalWidget();
    // Shown, managed and given the focus by the window manager, which
    // stacks a window before it focuses it.
    if (dialog == nullptr || !dialog->isVisible() || !dialog->isActiveWindow() ||
        stackIndex(dialog) < 0) {
      return;
    }
    poll->stop();
    poll->deleteLater();
    check(dialog);
    close(dialog);
  });
  poll->start();
}

class Desktop : public StartedApp<QtPanels> {
 protected:
  void SetUp() override {
    StartedApp::SetUp();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(controller->splashWindow()));
    ASSERT_TRUE(QTest::qWaitForWindowExposed(currentWindow()));
  }

  QWidget* currentWindow() const { return controller->windows().mainWindow()->window(); }
  // Quitting would end every event loop of the test; the quit item is
  // watched instead.
  std::unique_ptr<QSignalSpy> watchQuit() {
    QAction* quit = item("menuFileQuit");
    QObject::disconnect(quit, &QAction::triggered, qApp, nullptr);
    return std::make_unique<QSignalSpy>(quit, &QAction::triggered);
  }
};

TEST_F(Desktop, ModalDialogsOpenAboveTheSplashAndThePalettes) {
  const QList<QWidget*> floating = {
      controller->splashWindow(), controller->simulationPaletteController()->window(),
      controller->viewPaletteController()->window(), controller->bodyPaletteController()->window()};
  std::vector<QString> checked;
  auto above = [&](QWidget* dialog) {
    for (QWidget* window : floating) {
      EXPECT_GT(stackIndex(dialog), stackIndex(window))
          << dialog->windowTitle().toStdString() << " under " << window->objectName().toStdString();
    }
    checked.push_back(dialog->windowTitle());
  };
  auto answer = [](const char* button) {
    return [button](QWidget* dialog) {
      for (QPushButton* b : dialog->findChildren<QPushButton*>()) {
        if (b->text() == QLatin1String(button)) {
          b->click();
        }
      }
    };
  };
  const auto reject = [](QWidget* dialog) { static_cast<QDialog*>(dialog)->reject(); };

  // New: the confirmation, cancelled.
  whenModalDialogShows(above, answer("Cancel"));
  item("menuFileNew")->trigger();
  // Open: the confirmation, then the file panel.
  whenModalDialogShows(
      [&](QWidget* dialog) {
        above(dialog);
        whenModalDialogShows(above, reject);
      },
      answer("Don't Save"));
  item("menuFileOpen")->trigger();
  EXPECT_EQ(checked, (std::vector<QString>{"Command Confirmation", "Command Confirmation",
                                           "Open Datafile"}));
  EXPECT_TRUE(controller->splashWindow()->isVisible());
}

TEST_F(Desktop, ClickingTheLastViewWindowAfterAnotherClosedEnablesItsCommands) {
  controller->newView();
  OrrenvaleGLWindowController* first = controller->windows().windows()[0];
  OrrenvaleGLWindowController* second = controller->windows().windows()[1];
  ASSERT_TRUE(QTest::qWaitForWindowExposed(second->window()));
  ASSERT_TRUE(clickCloseBox(first->window()));
  clickCentre(second->CGLview());
  WAIT_UNTIL(item("menuZin")->isEnabled());
  for (const char* name : {"menuFilePrint", "menuViewTIFF", "menuDeleteThis", "menuPanUp"}) {
    EXPECT_TRUE(item(name)->isEnabled()) << name;
  }
  EXPECT_EQ(controller->windows().mainWindow(), second);
  EXPECT_TRUE(
      controller->viewPaletteController()->window()->findChild<QLineEdit*>("cx")->isEnabled());
}

TEST_F(Desktop, MenuKeysWorkFromEveryPalette) {
  controller->newBody();
  controller->newBody();
  View* view = controller->currentView();
  ASSERT_EQ(view->selectedBodyID, 101);
  // The palettes lie under the splash until it is clicked away.
  clickCentre(controller->splashWindow());
  WAIT_UNTIL(controller->splashWindow() == nullptr);

  QWidget* viewPalette = controller->viewPaletteController()->window();
  clickAt(viewPalette, QPoint(4, viewPalette->height() - 4));
  WAIT_UNTIL(viewPalette->isActiveWindow());
  const double z = view->cameraPosition.z;
  typeKeys({"ctrl+equal"});
  WAIT_UNTIL(view->cameraPosition.z < z);

  QWidget* bodyPalette = controller->bodyPaletteController()->window();
  clickAt(bodyPalette, QPoint(4, bodyPalette->height() - 4));
  WAIT_UNTIL(bodyPalette->isActiveWindow());
  typeKeys({"ctrl+bracketright"});
  WAIT_UNTIL(view->selectedBodyID == 100);

  // Ctrl++ and the keypad's + zoom in as Ctrl+= does.
  for (const char* key : {"ctrl+plus", "ctrl+KP_Add"}) {
    const double before = view->cameraPosition.z;
    typeKeys({key});
    WAIT_UNTIL(view->cameraPosition.z < before);
  }
  // Ctrl+W closes the active window: a palette hides through its toggle.
  typeKeys({"ctrl+w"});
  WAIT_UNTIL(!controller->menus().menuBodyInfoPalette->isChecked());
  EXPECT_FALSE(item("menuBodyInfoPalette")->isChecked());
}

TEST_F(Desktop, FilePanelsStartOnAllFilesInTheFolderLastUsed) {
  QTemporaryDir dir;
  panels.noteChosenFile(dir.filePath("world.ovd"));
  std::vector<std::pair<QString, QString>> seen;  // folder and filter
  const auto look = [&](QWidget* panel) {
    auto* dialog = static_cast<QFileDialog*>(panel);
    seen.emplace_back(dialog->directory().absolutePath(), dialog->selectedNameFilter());
  };
  const auto reject = [](QWidget* dialog) { static_cast<QDialog*>(dialog)->reject(); };
  whenModalDialogShows(look, reject);
  panels.runOpenPanel(nullptr);
  whenModalDialogShows(look, reject);
  panels.runSaveFilePanel(nullptr, "Export View to TIFF", "tiff");
  const QString folder = QDir(dir.path()).absolutePath();
  ASSERT_EQ(seen.size(), 2u);
  EXPECT_EQ(seen[0], std::make_pair(folder, QStringLiteral("All files (*)")));
  EXPECT_EQ(seen[1].first, folder);
  EXPECT_EQ(QtPanels::withSuffix("/a/view.tif", "tiff"), "/a/view.tif");
  EXPECT_EQ(QtPanels::withSuffix("/a/view.TIFF", "tiff"), "/a/view.TIFF");
  EXPECT_EQ(QtPanels::withSuffix("/a/view", "tiff"), "/a/view.tiff");
  EXPECT_EQ(QtPanels::withSuffix("/a/world.tif", "ovd"), "/a/world.tif.ovd");
}

// The movie panel's own controls give the length, its unit and the frame
// rate; its progress window leaves the program's timers running (no modal
// window) and reports Cancel from the event loop.
TEST_F(Desktop, MoviePanelAndItsProgressWindow) {
  QTemporaryDir dir;
  whenModalDialogShows(
      [&](QWidget* panel) {
        panel->findChild<QSpinBox*>("movieLength")->setValue(3);
        panel->findChild<QComboBox*>("movieLengthUnit")->setCurrentIndex(1);
        panel->findChild<QSpinBox*>("movieFrameRate")->setValue(30);
        // Typed as a user types it: the name field has the focus.
        panel->findChild<QLineEdit*>("fileNameEdit")->setText(dir.filePath("clip"));
      },
      [](QWidget* panel) { static_cast<QDialog*>(panel)->accept(); });
  const std::optional<Panels::MovieChoice> choice = panels.runMoviePanel(nullptr, "mp4");
  ASSERT_TRUE(choice.has_value());
  EXPECT_EQ(choice->path, dir.filePath("clip.mp4"));
  EXPECT_EQ(choice->length, 3);
  EXPECT_FALSE(choice->inSeconds);
  EXPECT_EQ(choice->framesPerSecond, 30);

  bool cancelled = false;
  auto progress = panels.openModelessProgress(nullptr, "Export View as Movie",
                                              [&cancelled] { cancelled = true; });
  EXPECT_TRUE(progress->update(0.5, "Recording frame 2 of 4"));
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  QProgressDialog* dialog = nullptr;
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (auto* shown = qobject_cast<QProgressDialog*>(window); shown && shown->isVisible()) {
      dialog = shown;
    }
  }
  ASSERT_NE(dialog, nullptr);
  ASSERT_TRUE(QTest::qWaitForWindowExposed(dialog));
  QTest::mouseClick(dialog->findChild<QPushButton*>(), Qt::LeftButton);
  WAIT_UNTIL(cancelled);
  EXPECT_FALSE(progress->update(0.75, "Recording frame 3 of 4"));
}

TEST_F(Desktop, MenusStayReachableWithoutViewWindowAndSimulationPalette) {
  controller->showSimulationPaletteFromMenu(nullptr);
  clickCentre(controller->splashWindow());
  ASSERT_TRUE(clickCloseBox(currentWindow()));
  WAIT_UNTIL(controller->windows().windows().empty());
  QWidget* bodyPalette = controller->bodyPaletteController()->window();
  ASSERT_TRUE(bodyPalette->isVisible());
  for (QWidget* palette : {bodyPalette, controller->viewPaletteController()->window()}) {
    const QMenuBar* bar = palette->findChild<QMenuBar*>();
    ASSERT_NE(bar, nullptr);
    EXPECT_TRUE(bar->isVisible());
    EXPECT_GE(bar->actions().size(), 4);
  }
  clickAt(bodyPalette, QPoint(4, bodyPalette->height() - 4));
  WAIT_UNTIL(bodyPalette->isActiveWindow());
  const auto quit = watchQuit();
  typeKeys({"ctrl+q"});
  WAIT_UNTIL(quit->count() == 1);
}

TEST_F(Desktop, TextEditingKeysStayInTheFocusedField) {
  controller->newBody();
  clickCentre(controller->splashWindow());
  WAIT_UNTIL(controller->splashWindow() == nullptr);
  QWidget* simPalette = controller->simulationPaletteController()->window();
  auto* name = simPalette->findChild<QLineEdit*>("name");
  ASSERT_NE(name, nullptr);
  // New body brought the Body palette to the front, over this one.
  xdotool({"windowactivate", "--sync", QString::number(simPalette->winId())});
  clickCentre(name);
  WAIT_UNTIL(name->hasFocus());
  // Ctrl+Backspace deletes the word before the cursor, not the selected
  // body; Ctrl+Left moves by a word, not the camera.
  const Vector camera = controller->currentView()->cameraPosition;
  typeKeys({"End", "ctrl+BackSpace"});
  WAIT_UNTIL(name->text() == QStringLiteral("Default "));
  typeKeys({"ctrl+Left", "ctrl+equal", "ctrl+bracketright"});
  WAIT_UNTIL(name->cursorPosition() == 0);
  EXPECT_NE(controller->world().findBodyById(100), nullptr);
  EXPECT_EQ(controller->currentView()->cameraPosition.x, camera.x);
  EXPECT_EQ(controller->currentView()->cameraPosition.z, camera.z);
}

}  // namespace
