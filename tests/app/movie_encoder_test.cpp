#include <gtest/gtest.h>

#include <QDir>
#include <QPainter>
#include <QTemporaryDir>

#include "app/movie_encoder.h"
#include "movie_probe.h"

namespace {

// A picture that moves with i: a red box sliding right, a green one rising,
// and a blue band along the right edge, which an odd width's padding
// repeats. Every edge lies between two colour samples of 4:2:0 (on even
// coordinates), so that only the codec's own loss remains.
QImage testPicture(QSize size, int i) {
  const int w = size.width() & ~1;
  const int h = size.height() & ~1;
  QImage image(size, QImage::Format_RGBX8888);
  image.fill(Qt::black);
  QPainter painter(&image);
  painter.fillRect(QRect(8 + 2 * i, 16, 64, 40), QColor(230, 40, 30));
  painter.fillRect(QRect(w - 96, h - 64 - 2 * i, 48, 32), QColor(40, 200, 60));
  painter.fillRect(QRect(w - 8, 0, size.width(), size.height()), QColor(50, 80, 220));
  return image;
}

struct EncodeCase {
  MovieCodec codec;
  const char* codecName;  // as ffprobe names it
  QSize size;
};

class MovieEncoding : public ::testing::TestWithParam<EncodeCase> {
 protected:
  QTemporaryDir dir;
};

TEST_P(MovieEncoding, EveryFrameComesBackInOrderAtThePaddedSize) {
  const EncodeCase c = GetParam();
  constexpr int kFrames = 48;
  const QString path = dir.filePath("movie." + movieSuffix(c.codec));
  MovieEncoder encoder;
  ASSERT_TRUE(encoder.open(path, c.size, 24, c.codec)) << encoder.errorString().toStdString();
  for (int i = 0; i < kFrames; ++i) {
    ASSERT_TRUE(encoder.addFrame(testPicture(c.size, i))) << encoder.errorString().toStdString();
  }
  // Nothing carries the movie's name before it is complete.
  EXPECT_FALSE(QFile::exists(path));
  ASSERT_TRUE(encoder.finish()) << encoder.errorString().toStdString();
  EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), QStringList{QFileInfo(path).fileName()});

  const QSize picture = moviePictureSize(c.size);
  EXPECT_EQ(picture, QSize((c.size.width() + 1) & ~1, (c.size.height() + 1) & ~1));
  const ProbedMovie movie = probeMovie(path);
  EXPECT_EQ(movie.codec, c.codecName);
  EXPECT_EQ(movie.size, picture);
  EXPECT_EQ(movie.frames, kFrames);
  // The first and the last frame are those given (another frame of the
  // sequence would differ by whole boxes). The bound on the worst 8 x 8
  // block is that of the recording test, where it is explained; with every
  // edge between colour samples only the codec's loss is left (6 levels).
  for (int i : {0, kFrames - 1}) {
    const QImage decoded = decodeFrame(path, i);
    ASSERT_EQ(decoded.size(), picture);
    const FrameDifference d = compareFrames(decoded, testPicture(c.size, i));
    EXPECT_LT(d.worstBlock, 12.0) << "frame " << i;
    // The padding repeats the blue band at the edge.
    const QRgb corner = decoded.pixel(picture.width() - 1, picture.height() - 1);
    EXPECT_GT(qBlue(corner), 160) << "frame " << i;
    EXPECT_LT(qRed(corner), 110) << "frame " << i;
  }
}

INSTANTIATE_TEST_SUITE_P(Codecs, MovieEncoding,
                         ::testing::Values(EncodeCase{MovieCodec::H264, "h264", QSize(321, 241)},
                                           EncodeCase{MovieCodec::VP9, "vp9", QSize(321, 241)}),
                         [](const auto& p) { return std::string(p.param.codecName); });

// A view resized while it is recorded: its frames are scaled into the
// movie's size, keeping their shape, with black beside them.
TEST(MovieEncoder, FrameOfAnotherSizeIsFittedOnBlack) {
  QTemporaryDir dir;
  const QString path = dir.filePath("movie.mp4");
  MovieEncoder encoder;
  ASSERT_TRUE(encoder.open(path, QSize(320, 240), 24, MovieCodec::H264));
  QImage narrow(160, 240, QImage::Format_RGBX8888);
  narrow.fill(QColor(230, 40, 30));
  ASSERT_TRUE(encoder.addFrame(narrow));
  ASSERT_TRUE(encoder.finish());
  const QImage decoded = decodeFrame(path, 0);
  ASSERT_EQ(decoded.size(), QSize(320, 240));
  EXPECT_LT(qRed(decoded.pixel(40, 120)), 30);
  EXPECT_GT(qRed(decoded.pixel(160, 120)), 200);
  EXPECT_LT(qRed(decoded.pixel(280, 120)), 30);
}

}  // namespace
