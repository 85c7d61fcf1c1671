#pragma once

#include <QImage>
#include <QSize>
#include <QString>
#include <memory>
#include <optional>

struct AVFrame;

// The two kinds of movie file: H.264 in MP4, which players, browsers and
// presentation programs play everywhere, and VP9 in WebM, for FFmpeg
// libraries built without an H.264 encoder.
enum class MovieCodec { H264, VP9 };

// H.264 when the FFmpeg libraries have its encoder (libx264), otherwise VP9
// (libvpx); nothing when they have neither.
std::optional<MovieCodec> preferredMovieCodec();

// The file name suffix of the codec's container: "mp4" or "webm".
QString movieSuffix(MovieCodec codec);

// The picture size of a movie made of frames of the given size. Movies are
// stored as 4:2:0 YUV (yuv420p: one colour sample for every two by two
// pixels), the only form every player takes, and H.264 then needs an even
// width and height: an odd width gains one column on the right, an odd
// height one row at the bottom, each a copy of the picture's last one.
QSize moviePictureSize(QSize frameSize);

// Encodes frames into a movie file through FFmpeg's libraries (libavcodec,
// libavformat, libswscale). The movie is written to a new file beside the
// one named and takes its name only when finish() succeeds; an encoder that
// fails or is destroyed before that leaves no file behind, and an old file
// of that name stays as it was. Used by one thread at a time.
class MovieEncoder {
 public:
  MovieEncoder();
  ~MovieEncoder();
  MovieEncoder(const MovieEncoder&) = delete;
  MovieEncoder& operator=(const MovieEncoder&) = delete;

  // Starts a movie of frames of frameSize at framesPerSecond.
  bool open(const QString& path, QSize frameSize, int framesPerSecond, MovieCodec codec);
  // Adds one frame, shown for 1 / framesPerSecond seconds. A frame of
  // another size (a view resized while it is recorded) is scaled to fit,
  // centred on black.
  bool addFrame(const QImage& frame);
  // Encodes what the codec still holds back, completes the file and gives
  // it its name.
  bool finish();
  // Why the last operation failed, for example "No space left on device".
  QString errorString() const { return error_; }

 private:
  struct State;
  bool fail(const QString& reason);
  bool failWithCode(int code);
  // Sends a picture (null at the end) and writes what the codec gives back.
  bool encode(AVFrame* picture);

  std::unique_ptr<State> s_;
  QString error_;
};
