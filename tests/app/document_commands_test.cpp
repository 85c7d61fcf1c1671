#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QImageReader>
#include <QTemporaryDir>
#include <atomic>
#include <thread>

#include "app_test_support.h"
#include "document/world_document.h"
#include "view/orrenvale_gl.h"

namespace {

class DocumentTest : public AppTest {
 protected:
  QString path(const char* name) const { return dir.filePath(name); }

  // A design of two bodies and two views with their own names, cameras,
  // sizes and angles.
  void designWorld() {
    controller->newBody();
    controller->newBody();
    Body* a = world().findBodyById(100);
    a->position.x = 12.5;
    controller->worldRenameBody(a, "Terra");
    world().deleteBodyById(101);
    controller->newBody();  // identifier 102
    world().gravitationalConstant = 1.0;
    world().setName("Saved world");
    View* first = controller->currentView();
    first->cameraPosition.x = 30.0;
    first->trackball->rotation.setRollPitchYaw(0.3, -0.4, 1.1);
    first->traceReference = TraceReference::CenterOfMass;
    controller->newView();
    OrrenvaleGLWindowController* second = controller->windows().mainWindow();
    copyName(second->CGLview()->view()->name, "Side");
    controller->setWindowTitleAndMinSize(second->window(), "Side");
    second->setContentSize(400, 300);
    ASSERT_TRUE(waitForFrameOfSize(400, 300));
    controller->editCurrent();
    flush();
  }

  QTemporaryDir dir;
};

TEST_F(DocumentTest, SaveAndOpenRoundTripBodiesParametersAndViews) {
  designWorld();
  panels.saves.push_back({path("world.ovd")});
  controller->saveDocumentFromMenu();
  ASSERT_TRUE(QFile::exists(path("world.ovd")));

  controller->resetSim();
  flush();
  panels.confirmAnswer = Panels::Answer::DontSave;
  panels.opens.push_back({path("world.ovd"), true, true, true});
  controller->openDocumentFromMenu();
  flush();

  EXPECT_TRUE(controller->editing());
  ASSERT_EQ(world().bodies->count(), 2);
  Body* a = world().findBodyById(100);
  ASSERT_NE(a, nullptr);
  EXPECT_STREQ(a->name, "Terra");
  EXPECT_EQ(a->position.x, 12.5);
  EXPECT_NE(world().findBodyById(102), nullptr);
  EXPECT_EQ(world().nextBodyId, 103);
  EXPECT_EQ(world().gravitationalConstant, 1.0);
  EXPECT_EQ(bodyMenuTitles(), (std::vector<QString>{"Terra", "Body 2"}));

  ASSERT_EQ(viewWindowCount(), 2);
  OrrenvaleGLWindowController* first = controller->windows().windows()[0];
  OrrenvaleGLWindowController* second = controller->windows().windows()[1];
  EXPECT_EQ(first->window()->windowTitle(), "View 0");
  EXPECT_EQ(second->window()->windowTitle(), "Side");
  EXPECT_EQ(first->CGLview()->view()->cameraPosition.x, 30.0);
  EXPECT_EQ(second->CGLview()->size(), QSize(400, 300));
  EXPECT_EQ(first->CGLview()->view()->traceReference, TraceReference::CenterOfMass);
  EXPECT_EQ(second->CGLview()->view()->traceReference, TraceReference::World);
  const Vector angles = first->CGLview()->view()->trackball->rotation.toRollPitchYaw();
  // Euler angles through a quaternion and back: a few ulps of the angles.
  EXPECT_NEAR(angles.x, 0.3, 1e-12);
  EXPECT_NEAR(angles.y, -0.4, 1e-12);
  EXPECT_NEAR(angles.z, 1.1, 1e-12);

  // The bodies alone: default parameters and no view.
  panels.opens.push_back({path("world.ovd"), true, false, false});
  controller->openDocumentFromMenu();
  flush();
  EXPECT_EQ(world().bodies->count(), 2);
  EXPECT_EQ(world().gravitationalConstant, World::kDefaultGravitationalConstant);
  EXPECT_STREQ(world().name, "Default world");
  EXPECT_EQ(viewWindowCount(), 0);
  EXPECT_TRUE(controller->editing());

  // A file named on the command line opens whole, without asking first.
  const int asked = panels.confirmations;
  EXPECT_TRUE(controller->openFile(path("world.ovd")));
  flush();
  EXPECT_EQ(panels.confirmations, asked);
  EXPECT_TRUE(controller->editing());
  EXPECT_EQ(viewWindowCount(), 2);
}

struct SaveCase {
  const char* name;
  bool leave;  // leave design mode and take ten steps first
  bool run;    // and set the clock running
  int stateIndex;
  double shown;  // the position the world shows and the file holds
};

class SaveState : public DocumentTest, public ::testing::WithParamInterface<SaveCase> {};

// Saving the design state shows the design; saving the current state keeps
// the run, stopped; in design mode the design state is the edited world.
TEST_P(SaveState, WritesTheChosenStateAndShowsIt) {
  const SaveCase c = GetParam();
  designWorld();
  if (c.leave) {
    controller->edit();
    for (int i = 0; i < 10; ++i)
      controller->stepSim();
  }
  if (c.run)
    controller->toggleSim();
  world().findBodyById(100)->position.x = 99.0;
  panels.saves.push_back({path("saved.ovd"), true, true, true, c.stateIndex});
  controller->saveDocumentFromMenu();
  flush();
  EXPECT_FALSE(controller->running());
  EXPECT_EQ(controller->editing(), !c.leave);
  EXPECT_EQ(world().findBodyById(100)->position.x, c.shown);
  EXPECT_EQ(world().elapsedTime == 0.0, c.stateIndex == 0);
  EXPECT_EQ(viewWindowCount(), 2);
  const DocumentReadResult read = readDocumentFile(path("saved.ovd"));
  ASSERT_TRUE(read.dict.has_value());
  World check;
  loadToWorldFromDict(check, &*read.dict, {});
  EXPECT_EQ(check.findBodyById(100)->position.x, c.shown);
}

INSTANTIATE_TEST_SUITE_P(States, SaveState,
                         ::testing::Values(SaveCase{"DesignAfterARun", true, false, 0, 12.5},
                                           SaveCase{"CurrentWhileRunning", true, true, 1, 99.0},
                                           SaveCase{"DesignInDesignMode", false, false, 0, 99.0}),
                         [](const auto& p) { return std::string(p.param.name); });

TEST_F(DocumentTest, UnreadableFilesGiveTheDefaultWorldWithoutViews) {
  QFile garbage(path("garbage.ovd"));
  ASSERT_TRUE(garbage.open(QIODevice::WriteOnly));
  garbage.write("\x01\x02<plist><dict><key>Bodies</key>");
  garbage.close();
  for (const QString& file : {path("garbage.ovd"), path("missing.ovd"), dir.path()}) {
    controller->newBody();
    controller->openFile(file);
    flush();
    EXPECT_EQ(world().bodies->count(), 0) << file.toStdString();
    EXPECT_EQ(viewWindowCount(), 0);
    EXPECT_TRUE(controller->editing());
    EXPECT_EQ(world().timeStep, World::kDefaultTimeStep);
  }
  panels.opens.push_back({path("garbage.ovd"), true, true, true});
  controller->openDocumentFromMenu();
  EXPECT_EQ(viewWindowCount(), 0);
}

TEST_F(DocumentTest, FifoGivesTheDefaultWorldWithoutWaitingForAWriter) {
  const QByteArray fifo = QFile::encodeName(path("world.ovd"));
  ASSERT_EQ(mkfifo(fifo.constData(), 0600), 0);
  // Opening the FIFO for reading would wait for a writer. This thread is the
  // writer: its open returns once anybody has opened the FIFO for reading, so
  // the test ends either way; only the program can do so before `released`.
  std::atomic<bool> released = false;
  std::atomic<bool> opened = false;
  std::thread writer([&] {
    if (const int fd = ::open(fifo.constData(), O_WRONLY); fd >= 0) {
      opened = !released;
      ::close(fd);
    }
  });
  controller->newBody();
  controller->openFile(path("world.ovd"));
  released = true;
  const int reader = ::open(fifo.constData(), O_RDONLY | O_NONBLOCK);
  writer.join();
  ::close(reader);
  flush();
  EXPECT_FALSE(opened);
  EXPECT_EQ(world().bodies->count(), 0);
  EXPECT_EQ(viewWindowCount(), 0);
  EXPECT_TRUE(controller->editing());
}

TEST_F(DocumentTest, CancelledPanelsChangeNothing) {
  designWorld();
  controller->openDocumentFromMenu();  // "Don't Save", then the panel is cancelled
  controller->saveDocumentFromMenu();
  controller->exportTIFF();
  flush();
  EXPECT_EQ(world().bodies->count(), 2);
  EXPECT_EQ(viewWindowCount(), 2);
  EXPECT_TRUE(controller->editing());
  EXPECT_TRUE(QDir(dir.path()).isEmpty());
}

TEST_F(DocumentTest, SavingToAReadOnlyPlaceLeavesTheOldFile) {
  designWorld();
  QDir(dir.path()).mkdir("locked");
  const QString locked = dir.filePath("locked/world.ovd");
  {
    QFile old(locked);
    ASSERT_TRUE(old.open(QIODevice::WriteOnly));
    old.write("old contents");
  }
  QFile::setPermissions(dir.filePath("locked"), QFileDevice::ReadOwner | QFileDevice::ExeOwner);
  panels.saves.push_back({locked});
  controller->saveDocumentFromMenu();
  QFile::setPermissions(dir.filePath("locked"),
                        QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
  QFile check(locked);
  ASSERT_TRUE(check.open(QIODevice::ReadOnly));
  // Root ignores directory permissions; then the write may succeed, and the
  // file must at least be whole.
  const QByteArray contents = check.readAll();
  EXPECT_TRUE(contents == "old contents" || contents.contains("</plist>"));
}

TEST_F(DocumentTest, ExportTiffWritesAnUprightImageOfTheViewsSize) {
  controller->newBody();
  Body* b = world().findBodyById(100);
  b->radius = 40.0;
  b->color[0] = 1.0f, b->color[1] = 0.0f, b->color[2] = 0.0f;
  b->position.y = 100.0;  // in the upper half of the view
  controller->currentView()->selectedBodyID = 0;
  controller->windows().mainWindow()->setContentSize(420, 330);
  ASSERT_TRUE(waitForFrameOfSize(420, 330));
  panels.files.push_back(path("view"));
  controller->exportTIFF();
  EXPECT_EQ(panels.lastFileTitle, "Export View to TIFF");
  EXPECT_EQ(panels.lastFileSuffix, "tiff");
  QImageReader reader(path("view"), "tiff");
  const QImage image = reader.read();
  ASSERT_FALSE(image.isNull()) << reader.errorString().toStdString();
  EXPECT_EQ(image.size(), QSize(420, 330));
  auto redIn = [&](int y0, int y1) {
    int n = 0;
    for (int y = y0; y < y1; ++y)
      for (int x = 0; x < image.width(); ++x) {
        const QColor c = image.pixelColor(x, y);
        n += (c.red() > 100 && c.green() < 60 && c.blue() < 60) ? 1 : 0;
      }
    return n;
  };
  EXPECT_GT(redIn(0, 165), 50);
  EXPECT_EQ(redIn(165, 330), 0);
}

TEST_F(DocumentTest, PrintHandsTheCapturedViewToThePrintDialog) {
  controller->windows().mainWindow()->setContentSize(300, 240);
  ASSERT_TRUE(waitForFrameOfSize(300, 240));
  item("menuFilePrint")->trigger();
  EXPECT_EQ(panels.printed.size(), QSize(300, 240));
}

}  // namespace
