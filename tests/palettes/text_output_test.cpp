#include <QDir>
#include <QFile>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <algorithm>

#include "palette_test_support.h"
#include "palettes/text_output_controller.h"

namespace {

class TextOutput : public PaletteTest<TextOutputController> {
 protected:
  // What the controller's step does: one world step, then a line if wanted.
  void stepSim() {
    host.w.step();
    if (palette.wantsText())
      palette.writeLine();
  }

  QPushButton* button(const char* name) {
    return palette.window()->findChild<QPushButton*>(QString::fromLatin1(name));
  }
  QPlainTextEdit* viewtext() {
    return palette.window()->findChild<QPlainTextEdit*>(QStringLiteral("viewtext"));
  }
  long lines() const { return static_cast<long>(palette.lineCount()); }
};

TEST_F(TextOutput, LogsOneLinePerStepOnlyWhileOnAndClearKeepsItOn) {
  host.w.createBody();
  EXPECT_FALSE(palette.wantsText());
  EXPECT_TRUE(button("begin")->isEnabled());
  EXPECT_FALSE(button("end")->isEnabled());
  for (int i = 0; i < 5; ++i)
    stepSim();
  EXPECT_EQ(lines(), 0);

  QTest::mouseClick(button("begin"), Qt::LeftButton);
  EXPECT_FALSE(button("begin")->isEnabled());
  EXPECT_TRUE(button("end")->isEnabled());
  for (int i = 0; i < 10; ++i)
    stepSim();
  EXPECT_EQ(lines(), 10);

  // Clearing empties the log and the view; logging goes on.
  QTest::mouseClick(button("clear"), Qt::LeftButton);
  EXPECT_TRUE(palette.text().empty());
  EXPECT_TRUE(viewtext()->toPlainText().isEmpty());
  stepSim();
  EXPECT_EQ(lines(), 1);
  EXPECT_TRUE(palette.text().starts_with("0.160000"));

  QTest::mouseClick(button("end"), Qt::LeftButton);
  for (int i = 0; i < 5; ++i)
    stepSim();
  EXPECT_EQ(lines(), 1);
  // Lines that arrived together reach the text view within its show interval.
  EXPECT_TRUE(QTest::qWaitFor(
      [this] { return viewtext()->toPlainText().toStdString() == palette.text(); }, 2000));
}

// A long log of a large world: the text view holds only the newest lines,
// each cut to its first fields, while Save writes every line in full.
TEST_F(TextOutput, LongLogKeepsTheViewSmallAndLosesNothing) {
  for (int i = 0; i < 40; ++i) {
    Body* b = host.w.createBody();
    b->position = Vector::of(1000.0 * i, 0, 0);
    if (i == 39)  // past what the view shows: it would lose the no-break space
      copyName(b->name, "Höhe\u00a01");
  }
  host.showOutputPaletteFromMenu(nullptr);
  palette.clickBegin(nullptr);
  constexpr int kSteps = 3000;  // about 15 MB of log
  for (int i = 0; i < kSteps; ++i)
    stepSim();
  const std::string log = palette.text();
  const std::string newest = log.substr(log.rfind('\n', log.size() - 2) + 1, 100);
  ASSERT_TRUE(QTest::qWaitFor(
      [&] {
        const QStringList shown = viewtext()->toPlainText().split('\n', Qt::SkipEmptyParts);
        return !shown.isEmpty() && shown.back().startsWith(QString::fromStdString(newest));
      },
      2000));
  EXPECT_EQ(palette.lineCount(), kSteps);
  EXPECT_LE(viewtext()->blockCount(), 600);  // 256 KB of lines cut to 512 bytes
  for (const QString& line : viewtext()->toPlainText().split('\n'))
    EXPECT_LE(line.size(), 520);
  const QString status = palette.window()->findChild<QLabel*>("lineCount")->text();
  EXPECT_TRUE(status.startsWith(QStringLiteral("3,000 lines (the newest"))) << status.toStdString();

  QTemporaryDir dir;
  dialogs.files.push_back(dir.filePath(QStringLiteral("run.txt")));
  QTest::mouseClick(button("save"), Qt::LeftButton);
  EXPECT_TRUE(dialogs.files.empty());
  EXPECT_EQ(dialogs.lastFileTitle, QStringLiteral("Save Log"));
  EXPECT_EQ(dialogs.lastFileSuffix, QString());
  QFile saved(dir.filePath(QStringLiteral("run.txt")));
  ASSERT_TRUE(saved.open(QIODevice::ReadOnly));
  EXPECT_EQ(saved.readAll().toStdString(), log);
  EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), kSteps);
}

TEST_F(TextOutput, CancelledOrFailedSaveWritesNothing) {
  QTemporaryDir dir;
  palette.writeLine();
  EXPECT_EQ(viewtext()->toPlainText().toStdString(), palette.text());  // shown at once
  palette.clickSave(nullptr);  // cancelled: the panel returns nothing
  dialogs.files.push_back(dir.filePath(QStringLiteral("missing/dir/run.txt")));
  palette.clickSave(nullptr);
  EXPECT_TRUE(QDir(dir.path()).isEmpty());
  EXPECT_EQ(palette.text(), "0.000000\n");
}

TEST_F(TextOutput, LoggingGoesOnWhileClosed) {
  show();
  palette.clickBegin(nullptr);
  ASSERT_TRUE(clickCloseBox(palette.window()));
  stepSim();
  EXPECT_EQ(lines(), 1);
}

}  // namespace
