#include "movie_recorder.h"

#include <QCoreApplication>
#include <QDir>
#include <QTimer>
#include <algorithm>
#include <climits>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

#include "view/orrenvale_gl.h"

namespace {

const QString kTitle = QStringLiteral("Export View as Movie");

// How far the encoder may fall behind the view before the view waits for
// it: about 27 frames of 640 x 480, 4 of 1920 x 1080 (and always one frame,
// whatever its size).
constexpr qsizetype kQueuedBytes = qsizetype{32} << 20;

QString cannotWrite(const QString& path, const QString& reason) {
  return QStringLiteral("%1 cannot be written (%2); no movie was saved.")
      .arg(QDir::toNativeSeparators(path), reason);
}

}  // namespace

// Frames on their way from the program's thread to the thread that encodes
// and writes them.
class EncodingQueue {
 public:
  // Called on the encoding thread, once: when the movie is complete and in
  // place (true), or when the encoder failed (false, with its reason).
  using Ended = std::function<void(bool written, const QString& error)>;

  EncodingQueue(std::unique_ptr<MovieEncoder> encoder, Ended ended)
      : encoder_(std::move(encoder)), ended_(std::move(ended)), thread_([this] { run(); }) {}

  // Abandons the movie: the thread stops after the frame in hand, and the
  // encoder goes with its unfinished file.
  ~EncodingQueue() {
    {
      std::lock_guard lock(mutex_);
      abandoned_ = true;
    }
    changed_.notify_all();
    thread_.join();
  }
  EncodingQueue(const EncodingQueue&) = delete;
  EncodingQueue& operator=(const EncodingQueue&) = delete;

  // Hands a frame over, waiting while the queue is full. False once the
  // encoder has failed.
  bool push(QImage frame) {
    std::unique_lock lock(mutex_);
    const qsizetype bytes = frame.sizeInBytes();
    changed_.wait(lock, [&] { return failed_ || queued_ == 0 || queued_ + bytes <= kQueuedBytes; });
    if (failed_) {
      return false;
    }
    queued_ += bytes;
    frames_.push_back(std::move(frame));
    lock.unlock();
    changed_.notify_all();
    return true;
  }

  // No more frames: the thread encodes those left and completes the movie.
  void close() {
    {
      std::lock_guard lock(mutex_);
      closed_ = true;
    }
    changed_.notify_all();
  }

 private:
  void run() {
    for (;;) {
      QImage frame;
      {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return abandoned_ || closed_ || !frames_.empty(); });
        if (abandoned_) {
          return;
        }
        if (frames_.empty()) {
          break;
        }
        frame = std::move(frames_.front());
        frames_.pop_front();
        queued_ -= frame.sizeInBytes();
      }
      changed_.notify_all();
      if (!encoder_->addFrame(frame)) {
        fail();
        return;
      }
    }
    if (!encoder_->finish()) {
      fail();
      return;
    }
    ended_(true, QString());
  }

  void fail() {
    {
      std::lock_guard lock(mutex_);
      failed_ = true;
      frames_.clear();
      queued_ = 0;
    }
    changed_.notify_all();
    ended_(false, encoder_->errorString());
  }

  std::unique_ptr<MovieEncoder> encoder_;
  Ended ended_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<QImage> frames_;
  qsizetype queued_ = 0;
  bool closed_ = false;
  bool abandoned_ = false;
  bool failed_ = false;
  // Last: the thread starts once everything above exists.
  std::thread thread_;
};

int movieFrameCount(const Panels::MovieChoice& choice) {
  const double frames = choice.inSeconds
                            ? static_cast<double>(choice.length) * choice.framesPerSecond
                            : static_cast<double>(choice.length);
  return static_cast<int>(std::clamp(frames, 1.0, static_cast<double>(INT_MAX)));
}

MovieRecorder::MovieRecorder(OrrenvaleGL& view, MovieSettings settings, QObject* parent)
    : QObject(parent), view_(&view), settings_(std::move(settings)) {}

MovieRecorder::~MovieRecorder() {
  detachFromView();
  queue_.reset();
}

bool MovieRecorder::start() {
  if (view_ == nullptr || queue_ != nullptr) {
    error_ = QStringLiteral("a movie is being recorded already");
    return false;
  }
  // The size of the frames the view reads back.
  const qreal ratio = view_->devicePixelRatio();
  const QSize size(static_cast<int>(view_->width() * ratio),
                   static_cast<int>(view_->height() * ratio));
  auto encoder = std::make_unique<MovieEncoder>();
  if (!encoder->open(settings_.path, size, settings_.framesPerSecond, settings_.codec)) {
    error_ = encoder->errorString();
    return false;
  }
  queue_ = std::make_unique<EncodingQueue>(
      std::move(encoder), [this](bool written, const QString& error) {
        // Back to the program's thread; the queue, and with it this thread,
        // ends before the recorder does.
        QMetaObject::invokeMethod(
            this, [this, written, error] { encodingEnded(written, error); }, Qt::QueuedConnection);
      });
  connect(view_, &OrrenvaleGL::frameDrawn, this, &MovieRecorder::takeFrame);
  connect(view_, &QObject::destroyed, this, [this] {
    // Half destroyed already: its connections and timer go with it.
    view_.clear();
    end(Outcome::Failed,
        QStringLiteral("The view window closed before the movie %1 was complete; no movie "
                       "was saved.")
            .arg(QDir::toNativeSeparators(settings_.path)));
  });
  // Qt timers count whole milliseconds: 1000 / 24 gives the view's own 41.
  QTimer* redraw = view_->redrawTimer();
  savedRedrawInterval_ = redraw->interval();
  redraw->setInterval(std::max(1, 1000 / settings_.framesPerSecond));
  return true;
}

void MovieRecorder::setProgress(std::unique_ptr<Panels::Progress> progress) {
  progress_ = std::move(progress);
  if (progress_ != nullptr) {
    progress_->update(0.0, QStringLiteral("Recording frame 1 of %1").arg(settings_.frames));
  }
}

void MovieRecorder::takeFrame(const QImage& frame) {
  if (ended_ || framesTaken_ >= settings_.frames || !queue_->push(frame)) {
    // A failed encoder reports through encodingEnded.
    return;
  }
  ++framesTaken_;
  if (framesTaken_ == settings_.frames) {
    detachFromView();
    queue_->close();
    if (progress_ != nullptr) {
      progress_->update(1.0, QStringLiteral("Writing the movie"));
    }
    return;
  }
  const double fraction = static_cast<double>(framesTaken_) / settings_.frames;
  if (progress_ != nullptr &&
      !progress_->update(
          fraction,
          QStringLiteral("Recording frame %1 of %2").arg(framesTaken_ + 1).arg(settings_.frames))) {
    cancel();
  }
}

void MovieRecorder::cancel() {
  // Once every frame is taken the movie is as good as written: the encoder
  // only completes the file.
  if (ended_ || framesTaken_ >= settings_.frames) {
    return;
  }
  end(Outcome::Cancelled, QStringLiteral("The movie %1 was cancelled; no movie was saved.")
                              .arg(QDir::toNativeSeparators(settings_.path)));
}

void MovieRecorder::encodingEnded(bool written, const QString& error) {
  if (written) {
    end(Outcome::Written, QStringLiteral("The movie %1 is written: %2 frames.")
                              .arg(QDir::toNativeSeparators(settings_.path))
                              .arg(framesTaken_));
  } else {
    end(Outcome::Failed, cannotWrite(settings_.path, error));
  }
}

void MovieRecorder::detachFromView() {
  if (view_ == nullptr) {
    return;
  }
  disconnect(view_, nullptr, this, nullptr);
  if (savedRedrawInterval_ > 0) {
    view_->redrawTimer()->setInterval(savedRedrawInterval_);
  }
  view_ = nullptr;
}

void MovieRecorder::end(Outcome outcome, const QString& message) {
  if (ended_) {
    return;
  }
  ended_ = true;
  detachFromView();
  // Waits for the encoding thread; after a cancel or a failure the
  // unfinished file is gone when this returns.
  queue_.reset();
  progress_.reset();
  QMetaObject::invokeMethod(
      this, [this, outcome, message] { emit finished(outcome, message); }, Qt::QueuedConnection);
}

MovieRecorder* MovieExport::exportView(OrrenvaleGL& view) {
  Panels* dialogs = &panels_;
  if (active_ != nullptr) {
    dialogs->alert(nullptr, kTitle,
                   "A movie is being recorded already: wait for it to finish or cancel it.");
    return nullptr;
  }
  const std::optional<MovieCodec> codec = preferredMovieCodec();
  if (!codec) {
    dialogs->alert(nullptr, kTitle,
                   "Movies cannot be made: the FFmpeg libraries have neither an H.264 (libx264) "
                   "nor a VP9 (libvpx) encoder.");
    return nullptr;
  }
  const QPointer<OrrenvaleGL> target(&view);
  const std::optional<Panels::MovieChoice> choice =
      dialogs->runMoviePanel(nullptr, movieSuffix(*codec));
  if (!choice || target == nullptr) {
    return nullptr;
  }
  auto* recorder = new MovieRecorder(
      *target,
      MovieSettings{choice->path, movieFrameCount(*choice), choice->framesPerSecond, *codec},
      QCoreApplication::instance());
  if (!recorder->start()) {
    dialogs->alert(nullptr, kTitle, cannotWrite(choice->path, recorder->errorString()));
    delete recorder;
    return nullptr;
  }
  const QPointer<MovieRecorder> guard(recorder);
  recorder->setProgress(dialogs->openModelessProgress(nullptr, kTitle, [guard] {
    if (guard != nullptr) {
      guard->cancel();
    }
  }));
  QObject::connect(recorder, &MovieRecorder::finished, recorder,
                   [this, recorder](MovieRecorder::Outcome outcome, const QString& message) {
                     if (outcome == MovieRecorder::Outcome::Failed) {
                       panels_.alert(nullptr, kTitle, message);
                     }
                     recorder->deleteLater();
                   });
  active_ = recorder;
  return recorder;
}
