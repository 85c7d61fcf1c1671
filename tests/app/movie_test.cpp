#include <gtest/gtest.h>
#include <sys/resource.h>

#include <QDir>
#include <QImageReader>
#include <QTemporaryDir>

#include "app/movie_recorder.h"
#include "app_test_support.h"
#include "movie_probe.h"
#include "view/orrenvale_gl.h"

namespace {

class MovieTest : public AppTest {
 protected:
  void SetUp() override {
    AppTest::SetUp();
    // Three lit spheres in the default view, with its grid lines: sharp
    // edges and thin lines, the hardest parts for a video codec.
    const double xs[] = {-120.0, 0.0, 120.0};
    for (int i = 0; i < 3; ++i) {
      Body* b = world().createBody();
      b->position = Vector::of(xs[i], 40.0 * i - 40.0, 0.0);
      b->radius = 35.0;
      for (int c = 0; c < 3; ++c)
        b->color[c] = c == i ? 1.0f : 0.1f;
    }
    controller->windows().mainWindow()->setContentSize(320, 240);
    flush();
    ASSERT_TRUE(QTest::qWaitFor([&] { return view().size() == QSize(320, 240); }));
  }

  OrrenvaleGL& view() const { return *controller->currentGLView(); }

  // Starts a recording through the command, as the menu does, answering its
  // panel with `choice`.
  MovieRecorder* record(const Panels::MovieChoice& choice) {
    panels.movies.push_back(choice);
    MovieRecorder* recorder = controller->movies().exportView(view());
    if (recorder != nullptr) {
      QObject::connect(recorder, &MovieRecorder::finished,
                       [this](MovieRecorder::Outcome o, const QString&) { outcome = o; });
    }
    return recorder;
  }
  bool waitForTheEnd() {
    return QTest::qWaitFor([&] { return outcome.has_value(); }, 120000);
  }
  QStringList filesLeft() const {
    return QDir(dir.path()).entryList(QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot);
  }

  QTemporaryDir dir;
  std::optional<MovieRecorder::Outcome> outcome;
};

TEST_F(MovieTest, FortyEightFramesOfTheViewMatchItsTiffCapture) {
  const QString tiff = dir.filePath("view.tiff");
  panels.files.push_back(tiff);
  controller->exportTIFF();
  const QImage still = QImageReader(tiff, "tiff").read();
  ASSERT_EQ(still.size(), QSize(320, 240));

  const QString path = dir.filePath("view.mp4");
  ASSERT_NE(record({path, 48, false, 24}), nullptr);
  EXPECT_EQ(panels.lastFileSuffix, "mp4");
  ASSERT_TRUE(waitForTheEnd());
  EXPECT_EQ(outcome, MovieRecorder::Outcome::Written);
  EXPECT_TRUE(panels.alerts.empty());
  ASSERT_FALSE(panels.progressTexts.empty());
  EXPECT_EQ(panels.progressTexts.front(), "Recording frame 1 of 48");

  const ProbedMovie movie = probeMovie(path);
  EXPECT_EQ(movie.codec, "h264");
  EXPECT_EQ(movie.size, QSize(320, 240));
  EXPECT_EQ(movie.frames, 48);
  const QImage first = decodeFrame(path, 0);
  ASSERT_EQ(first.size(), movie.size);
  const FrameDifference d = compareFrames(first, still.convertToFormat(QImage::Format_RGB32));
  // The codec's loss: limited-range 8-bit YUV rounds by about a level, quality
  // 18 moves a block's mean by a few, and 4:2:0 colour smears a sphere's edge
  // by up to 30 levels per pixel: this picture's worst block is 9.8 off, while
  // a wrong colour matrix gives 25 and a flipped or swapped frame over 100.
  // The black background stays exact (mean 0.7); full range read as limited
  // would lift it by 16.
  EXPECT_LT(d.mean, 2.0);
}

TEST_F(MovieTest, RecordingLeavesTheClockRunningAtItsPace) {
  controller->edit();  // out of design mode
  controller->toggleSim();
  ASSERT_TRUE(controller->running());
  const double before = world().elapsedTime;
  const int interval = view().redrawTimer()->interval();
  ASSERT_NE(record({dir.filePath("run.mp4"), 24, false, 48}), nullptr);
  // At 48 frames a second the view draws every 20 ms while it is recorded.
  EXPECT_EQ(view().redrawTimer()->interval(), 20);
  ASSERT_TRUE(waitForTheEnd());
  EXPECT_EQ(outcome, MovieRecorder::Outcome::Written);
  EXPECT_TRUE(controller->running());
  EXPECT_GT(world().elapsedTime, before);
  EXPECT_EQ(view().redrawTimer()->interval(), interval);
  EXPECT_EQ(probeMovie(dir.filePath("run.mp4")).frames, 24);
}

// Cancel, or closing the view it records, ends a recording and leaves no
// file; only the closed view is a failure, with a message naming the file.
class MovieEnd : public MovieTest, public ::testing::WithParamInterface<bool> {};

TEST_P(MovieEnd, LeavesNoFile) {
  const bool closeView = GetParam();
  MovieRecorder* recorder = record({dir.filePath("ended.mp4"), 10, true, 24});
  ASSERT_NE(recorder, nullptr);
  ASSERT_TRUE(QTest::qWaitFor([&] { return recorder->framesTaken() >= 3; }));
  if (closeView) {
    controller->windows().mainWindow()->closeAsUser();
  } else {
    panels.pressCancel();
  }
  ASSERT_TRUE(waitForTheEnd());
  EXPECT_EQ(outcome,
            closeView ? MovieRecorder::Outcome::Failed : MovieRecorder::Outcome::Cancelled);
  ASSERT_EQ(panels.alertMessages.size(), closeView ? 1u : 0u);
  EXPECT_TRUE(!closeView || panels.alertMessages[0].contains("ended.mp4"));
  EXPECT_EQ(filesLeft(), QStringList());
  EXPECT_EQ(controller->movies().active(), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Ways, MovieEnd, ::testing::Bool(),
                         [](const auto& p) { return p.param ? "ClosedView" : "Cancel"; });

struct FailureCase {
  const char* name;
  const char* file;
  rlim_t fileSizeLimit;  // as on a full disk, less than the first frames take
  const char* reason;
  std::optional<MovieRecorder::Outcome> outcome;  // none: the recording never starts
};

class MovieFailure : public MovieTest, public ::testing::WithParamInterface<FailureCase> {};

// A folder that is missing, or a write that fails half-way: the alert names
// the file and gives the system's reason; no file is left, not even the
// unfinished one beside it.
TEST_P(MovieFailure, GivesAMessageAndNoFile) {
  const FailureCase c = GetParam();
  rlimit saved{};
  getrlimit(RLIMIT_FSIZE, &saved);
  rlimit limited = saved;
  limited.rlim_cur = std::min(saved.rlim_cur, c.fileSizeLimit);
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limited), 0);
  const QString path = dir.filePath(c.file);
  const bool started = record({path, 48, false, 24}) != nullptr;
  const bool ended = started && waitForTheEnd();
  setrlimit(RLIMIT_FSIZE, &saved);
  EXPECT_EQ(ended, started);
  EXPECT_EQ(outcome, c.outcome);
  ASSERT_EQ(panels.alertMessages.size(), 1u);
  EXPECT_EQ(panels.alertMessages[0],
            path + " cannot be written (" + c.reason + "); no movie was saved.");
  EXPECT_EQ(filesLeft(), QStringList());
  EXPECT_EQ(controller->movies().active(), nullptr);
}

INSTANTIATE_TEST_SUITE_P(
    Causes, MovieFailure,
    ::testing::Values(FailureCase{"MissingFolder", "missing/movie.mp4", RLIM_INFINITY,
                                  "No such file or directory", std::nullopt},
                      FailureCase{"FailedWrite", "big.mp4", 4096, "File too large",
                                  MovieRecorder::Outcome::Failed}),
    [](const auto& p) { return std::string(p.param.name); });

}  // namespace
