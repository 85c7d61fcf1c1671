#pragma once

// Reads movies back with FFmpeg's own programs (Debian's ffmpeg package),
// apart from the code that wrote them.
#include <gtest/gtest.h>

#include <QImage>
#include <QProcess>
#include <QSize>
#include <algorithm>
#include <cmath>
#include <cstdlib>

struct ProbedMovie {
  QString codec;
  QSize size;
  int frames = 0;
};

// Runs ffprobe or ffmpeg; its standard output, or a test failure.
inline QByteArray runFfmpegTool(const QString& program, const QStringList& arguments) {
  QProcess process;
  process.start(program, arguments);
  if (!process.waitForFinished(120000) || process.exitStatus() != QProcess::NormalExit ||
      process.exitCode() != 0) {
    ADD_FAILURE() << program.toStdString() << " failed (it comes with Debian's ffmpeg package): "
                  << process.errorString().toStdString() << ' '
                  << process.readAllStandardError().toStdString();
    return {};
  }
  return process.readAllStandardOutput();
}

// The video stream's codec, picture size and number of frames, counted by
// decoding every one.
inline ProbedMovie probeMovie(const QString& path) {
  const QList<QByteArray> fields =
      runFfmpegTool("ffprobe",
                    {"-v", "error", "-select_streams", "v:0", "-count_frames", "-show_entries",
                     "stream=codec_name,width,height,nb_read_frames", "-of", "csv=p=0", path})
          .trimmed()
          .split(',');
  if (fields.size() != 4)
    return {};
  return {QString::fromLatin1(fields[0]), QSize(fields[1].toInt(), fields[2].toInt()),
          fields[3].toInt()};
}

// Frame `index` (from 0) of the movie, as ffmpeg decodes and converts it by
// the colour description the movie carries.
inline QImage decodeFrame(const QString& path, int index) {
  return QImage::fromData(runFfmpegTool(
      "ffmpeg", {"-v", "error", "-i", path, "-vf", QString("select=eq(n\\,%1)").arg(index),
                 "-frames:v", "1", "-f", "image2pipe", "-vcodec", "png", "-"}));
}

// How far a decoded frame is from the picture it was made from, over the
// picture's area.
struct FrameDifference {
  // Mean absolute difference of the 8-bit channels over all pixels.
  double mean = 0.0;
  // Largest difference of one channel's mean over a block of 8 x 8 pixels.
  double worstBlock = 0.0;
};

inline FrameDifference compareFrames(const QImage& decoded, const QImage& original) {
  constexpr int kBlock = 8;
  const int across = original.width() / kBlock;
  const int blocks = across * (original.height() / kBlock);
  FrameDifference d;
  for (int block = 0; block < blocks; ++block) {
    double sums[3] = {};
    for (int i = 0; i < kBlock * kBlock; ++i) {
      const int x = block % across * kBlock + i % kBlock;
      const int y = block / across * kBlock + i / kBlock;
      const QRgb a = decoded.pixel(x, y);
      const QRgb b = original.pixel(x, y);
      const int diffs[3] = {qRed(a) - qRed(b), qGreen(a) - qGreen(b), qBlue(a) - qBlue(b)};
      for (int c = 0; c < 3; ++c) {
        sums[c] += diffs[c];
        d.mean += std::abs(diffs[c]);
      }
    }
    for (double sum : sums)
      d.worstBlock = std::max(d.worstBlock, std::abs(sum) / (kBlock * kBlock));
  }
  d.mean /= 3.0 * blocks * kBlock * kBlock;
  return d;
}
