// Orrenvale: an interactive N-body gravitation simulator.
#include <QApplication>
#include <QCommandLineParser>
#include <QFileInfo>
#include <QScreen>
#include <QTimer>

#include "controller.h"
#include "qt_panels.h"
#include "splash_window.h"
#include "view/surface_format.h"

int main(int argc, char* argv[]) {
  setDefaultSurfaceFormat();
  QApplication app(argc, argv);
  QApplication::setApplicationName("Orrenvale");
  QApplication::setApplicationVersion(ORRENVALE_VERSION);
  QApplication::setDesktopFileName("orrenvale");
  // Palettes and view windows come and go (a reset closes every view
  // window); the controller decides when nothing is left to show.
  QApplication::setQuitOnLastWindowClosed(false);
  QApplication::setWindowIcon(QIcon(makeSplashPicture().copy(96, 60, 48, 48)));

  QCommandLineParser parser;
  parser.setApplicationDescription("Interactive 3-D N-body gravitation simulator.");
  parser.addHelpOption();
  parser.addVersionOption();
  parser.addPositionalArgument("file", "A datafile (.ovd) to open.", "[file]");
  // For demonstrations without a screen (scripts/run.sh under xvfb-run).
  const QCommandLineOption screenshot(
      "screenshot",
      "Run the opened world for a few seconds, save a picture of the whole screen to <png> "
      "and quit.",
      "png");
  parser.addOption(screenshot);
  parser.process(app);

  QtPanels qtPanels;
  Controller controller(&qtPanels);
  if (!controller.applicationDidFinishLaunching()) {
    return 1;
  }
  // A datafile named on the command line (or by the desktop entry) opens
  // once the program is up, as if the desktop had handed it over.
  const QStringList files = parser.positionalArguments();
  if (!files.isEmpty()) {
    controller.openFile(QFileInfo(files.first()).absoluteFilePath());
  }
  if (parser.isSet(screenshot)) {
    const QString target = parser.value(screenshot);
    QTimer::singleShot(1000, &controller, [&controller] {
      if (QWidget* splash = controller.splashWindow()) {
        splash->close();
      }
      controller.edit();
      controller.toggleSim();
    });
    QTimer::singleShot(5000, &controller, [target] {
      if (QScreen* screen = QGuiApplication::primaryScreen()) {
        screen->grabWindow(0).save(target, "PNG");
      }
      QApplication::quit();
    });
  }
  return QApplication::exec();
}
