#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <memory>

#include "movie_encoder.h"
#include "palettes/panels.h"

class EncodingQueue;
class OrrenvaleGL;

struct MovieSettings {
  QString path;
  int frames = 240;
  int framesPerSecond = 24;
  MovieCodec codec = MovieCodec::H264;
};

// The number of frames the movie panel's choice asks for: its length in
// frames, or in seconds times the frame rate; at least one.
int movieFrameCount(const Panels::MovieChoice& choice);

// Records a view into a movie as the view draws. Every frame the view draws
// becomes one frame of the movie, while the simulation clock, the palettes
// and the user go on as usual: the movie shows what the user sees. For the
// recording the view draws at the movie's frame rate (its own rate is 24 a
// second, the default), so that the movie plays at the pace the run was
// seen. Frames are encoded and written on a thread of their own; only
// reading each frame back from OpenGL is left to the program's thread. The
// encoder may fall behind by a few frames (kQueuedBytes); beyond that the
// view waits for it.
//
// A view that draws nothing (its window minimised or hidden) adds nothing;
// the recording goes on when it draws again. A view resized during the
// recording is scaled into the movie's size.
class MovieRecorder : public QObject {
  Q_OBJECT

 public:
  enum class Outcome { Written, Cancelled, Failed };
  Q_ENUM(Outcome)

  MovieRecorder(OrrenvaleGL& view, MovieSettings settings, QObject* parent = nullptr);
  // A recording still under way ends as cancelled: no file is left.
  ~MovieRecorder() override;
  MovieRecorder(const MovieRecorder&) = delete;
  MovieRecorder& operator=(const MovieRecorder&) = delete;

  // Opens the movie file and starts taking the view's frames; false, with
  // errorString() giving the reason, when the file cannot be started.
  bool start();
  // Stops the recording; the unfinished file is removed.
  void cancel();
  // Shows the recording's progress; an update answered false cancels it.
  void setProgress(std::unique_ptr<Panels::Progress> progress);

  const MovieSettings& settings() const { return settings_; }
  int framesTaken() const { return framesTaken_; }
  QString errorString() const { return error_; }

 signals:
  // Sent once, always from the event loop (never from inside start(),
  // cancel() or the view's destruction). When it comes, the movie is in
  // place (Written) or no file is left (Cancelled, Failed); message says
  // what happened, naming the file.
  void finished(MovieRecorder::Outcome outcome, const QString& message);

 private:
  void takeFrame(const QImage& frame);
  void encodingEnded(bool written, const QString& error);
  // Stops taking frames and gives the view back its own pace.
  void detachFromView();
  void end(Outcome outcome, const QString& message);

  QPointer<OrrenvaleGL> view_;
  MovieSettings settings_;
  std::unique_ptr<EncodingQueue> queue_;
  std::unique_ptr<Panels::Progress> progress_;
  int framesTaken_ = 0;
  int savedRedrawInterval_ = 0;
  bool ended_ = false;
  QString error_;
};

// "Export View as Movie...", one recording at a time: asks for the file, the
// length and the frame rate, then records the view with a progress window
// whose Cancel stops it. A movie that cannot be started or completed gives an
// alert naming the file and the reason, and leaves no file.
class MovieExport {
 public:
  explicit MovieExport(Panels& panels) : panels_(panels) {}
  // A recording still under way ends as cancelled.
  ~MovieExport() { delete active_.data(); }
  MovieExport(const MovieExport&) = delete;
  MovieExport& operator=(const MovieExport&) = delete;

  // The recording under way, which deletes itself once finished, or null
  // when none was started.
  MovieRecorder* exportView(OrrenvaleGL& view);
  // The recording under way, if any.
  MovieRecorder* active() const { return active_; }

 private:
  Panels& panels_;
  QPointer<MovieRecorder> active_;
};
