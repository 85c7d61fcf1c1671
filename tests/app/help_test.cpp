#include <gtest/gtest.h>

#include <QDesktopServices>
#include <QFileInfo>
#include <QUrl>

#include "app/help_commands.h"
#include "app_test_support.h"

namespace {

// Takes the URLs the program hands to the desktop instead of opening them.
class UrlCatcher : public QObject {
  Q_OBJECT

 public slots:
  void open(const QUrl& url) { urls.push_back(url); }

 public:
  std::vector<QUrl> urls;
};

using HelpTest = AppTest;

TEST_F(HelpTest, AboutBoxGivesTheVersionWhatItIsAndTheLicence) {
  showAbout(panels, nullptr);
  EXPECT_EQ(panels.aboutTitle, "About Orrenvale");
  EXPECT_TRUE(panels.aboutText.contains("Orrenvale " ORRENVALE_VERSION));
  EXPECT_TRUE(panels.aboutText.contains("N-body gravitation simulator"));
  EXPECT_TRUE(panels.aboutText.contains("GPL-3.0-or-later"));
}

// Run from the build tree, where nothing is installed beside the program,
// Help opens the README of the sources it was built from.
TEST_F(HelpTest, HelpOpensTheReadmeInTheDesktopsViewer) {
  UrlCatcher catcher;
  QDesktopServices::setUrlHandler("file", &catcher, "open");
  const bool opened = openHelp(panels);
  QDesktopServices::unsetUrlHandler("file");
  EXPECT_TRUE(opened);
  EXPECT_TRUE(panels.alerts.empty());
  ASSERT_EQ(catcher.urls.size(), 1u);
  EXPECT_EQ(QFileInfo(catcher.urls[0].toLocalFile()).canonicalFilePath(),
            QFileInfo(ORRENVALE_SOURCE_DIR "/README.md").canonicalFilePath());
}

}  // namespace

#include "help_test.moc"
