#include "output_file.h"

#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <QRandomGenerator>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>

namespace {

// Symbolic links are followed to the file they name, existing or not, so that
// the new file replaces the target and the link stays a link. Relative
// targets are relative to the link's folder.
QByteArray resolveLinks(QByteArray path) {
  for (int hops = 0; hops < 40; ++hops) {
    struct stat st {};
    if (lstat(path.constData(), &st) != 0 || !S_ISLNK(st.st_mode)) {
      return path;
    }
    QByteArray target(PATH_MAX, '\0');
    const ssize_t length = readlink(path.constData(), target.data(), PATH_MAX);
    if (length <= 0) {
      return path;
    }
    target.truncate(length);
    if (!target.startsWith('/')) {
      const qsizetype slash = path.lastIndexOf('/');
      if (slash >= 0) {
        target.prepend(path.left(slash + 1));
      }
    }
    path = target;
  }
  return path;
}

// The standard stream (1 or 2) that is the same file as st, or -1.
int standardStreamOf(const struct stat& st) {
  for (int fd : {STDOUT_FILENO, STDERR_FILENO}) {
    struct stat other {};
    if (fstat(fd, &other) == 0 && other.st_dev == st.st_dev && other.st_ino == st.st_ino) {
      return fd;
    }
  }
  return -1;
}

// One write with SIGPIPE and SIGXFSZ held back, so that a reader that went
// away or a file past the size limit gives an error that is reported (EPIPE,
// EFBIG) rather than ending the process without a word and leaving the new
// file behind. Either signal may come with a partial write too, so each is
// taken back whenever the write raised it.
ssize_t writeHoldingBackSignals(int fd, const char* data, std::size_t size) {
  sigset_t heldBack;
  sigemptyset(&heldBack);
  sigaddset(&heldBack, SIGPIPE);
  sigaddset(&heldBack, SIGXFSZ);
  sigset_t pendingBefore;
  sigpending(&pendingBefore);
  sigset_t previous;
  pthread_sigmask(SIG_BLOCK, &heldBack, &previous);
  const ssize_t written = ::write(fd, data, size);
  const int error = errno;
  sigset_t pendingAfter;
  sigpending(&pendingAfter);
  for (int signal : {SIGPIPE, SIGXFSZ}) {
    if (sigismember(&pendingAfter, signal) == 1 && sigismember(&pendingBefore, signal) != 1) {
      sigset_t one;
      sigemptyset(&one);
      sigaddset(&one, signal);
      const timespec noWait{};
      sigtimedwait(&one, nullptr, &noWait);
    }
  }
  pthread_sigmask(SIG_SETMASK, &previous, nullptr);
  errno = error;
  return written;
}

}  // namespace

QString systemErrorText(int error) {
  return QString::fromLocal8Bit(std::strerror(error));
}

OutputFile::~OutputFile() {
  discard();
}

bool OutputFile::open(const QString& path, FifoOpen fifo) {
  discard();
  error_ = 0;
  const QByteArray name = QFile::encodeName(path);
  if (name.isEmpty()) {
    return fail(ENOENT);
  }
  struct stat st {};
  if (stat(name.constData(), &st) != 0) {
    return errno == ENOENT ? openReplacing(name) : fail(errno);
  }
  if (const int stream = standardStreamOf(st); stream >= 0) {
    std::fflush(stream == STDOUT_FILENO ? stdout : stderr);
    fd_ = stream;
    return true;
  }
  if (S_ISDIR(st.st_mode)) {
    return fail(EISDIR);
  }
  return S_ISREG(st.st_mode) ? openReplacing(name) : openStream(name, fifo);
}

bool OutputFile::openStandardOutput() {
  discard();
  error_ = 0;
  std::fflush(stdout);
  fd_ = STDOUT_FILENO;
  return true;
}

bool OutputFile::openStream(const QByteArray& path, FifoOpen fifo) {
  const int nonBlocking = fifo == FifoOpen::FailWithoutReader ? O_NONBLOCK : 0;
  int fd = -1;
  do {
    fd = ::open(path.constData(), O_WRONLY | O_CLOEXEC | O_NOCTTY | nonBlocking);
  } while (fd < 0 && errno == EINTR);
  if (fd < 0) {
    return fail(errno);
  }
  fd_ = fd;
  ownsFd_ = true;
  struct stat st {};
  if (fstat(fd, &st) != 0) {
    return fail(errno);
  }
  if (S_ISREG(st.st_mode)) {
    // A regular file took the path's place after it was looked at: it is
    // replaced like any regular file, not written over.
    discard();
    return openReplacing(path);
  }
  if (nonBlocking != 0 && fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) & ~O_NONBLOCK) != 0) {
    return fail(errno);
  }
  return true;
}

bool OutputFile::openReplacing(const QByteArray& path) {
  finalPath_ = resolveLinks(path);
  struct stat old {};
  const bool exists = stat(finalPath_.constData(), &old) == 0;
  // A file the user may not change is not replaced either (the folder may
  // allow it); this also names a read-only file system before any write.
  if (exists && access(finalPath_.constData(), W_OK) != 0) {
    return fail(errno);
  }
  const qsizetype slash = finalPath_.lastIndexOf('/');
  const QByteArray folder = finalPath_.left(slash + 1);
  // The base name is cut so that the hidden temporary name stays within the
  // 255 bytes a file name may have.
  const QByteArray base = finalPath_.mid(slash + 1).left(200);
  for (int attempt = 0; attempt < 100; ++attempt) {
    const QByteArray candidate =
        folder + '.' + base + '.' + QByteArray::number(QRandomGenerator::global()->generate(), 36);
    const int fd = ::open(candidate.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd >= 0) {
      fd_ = fd;
      ownsFd_ = true;
      tempPath_ = candidate;
      break;
    }
    if (errno != EEXIST) {
      return fail(errno);
    }
  }
  if (tempPath_.isEmpty()) {
    return fail(EEXIST);
  }
  if (exists) {
    // The replacement keeps the old file's permissions and, where the system
    // allows it, its owner; neither is worth failing the write for.
    [[maybe_unused]] const bool kept = fchmod(fd_, old.st_mode & 07777) == 0 &&
                                       ((old.st_uid == geteuid() && old.st_gid == getegid()) ||
                                        fchown(fd_, old.st_uid, old.st_gid) == 0);
  }
  return true;
}

bool OutputFile::write(const char* data, std::size_t size) {
  if (error_ != 0) {
    return false;
  }
  if (fd_ < 0) {
    return fail(EBADF);
  }
  while (size > 0) {
    const ssize_t written = writeHoldingBackSignals(fd_, data, size);
    if (written > 0) {
      data += written;
      size -= static_cast<std::size_t>(written);
    } else if (written < 0 && errno == EINTR) {
      continue;
    } else if (written < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
      // A stream that another process left non-blocking: wait until it
      // takes more.
      pollfd ready{fd_, POLLOUT, 0};
      if (poll(&ready, 1, -1) < 0 && errno != EINTR) {
        return fail(errno);
      }
    } else {
      // A write that takes nothing without an error cannot make progress.
      return fail(written < 0 ? errno : EIO);
    }
  }
  return true;
}

qint64 OutputFile::seek(qint64 offset, int whence) {
  if (error_ != 0) {
    return -1;
  }
  if (fd_ < 0 || tempPath_.isEmpty()) {
    fail(fd_ < 0 ? EBADF : ESPIPE);
    return -1;
  }
  const off_t position = lseek(fd_, static_cast<off_t>(offset), whence);
  if (position < 0) {
    fail(errno);
    return -1;
  }
  return position;
}

bool OutputFile::commit() {
  if (error_ != 0) {
    return false;
  }
  if (fd_ < 0) {
    return fail(EBADF);
  }
  if (!tempPath_.isEmpty()) {
    // Some file systems report a full disk or a lost device only here.
    if (fsync(fd_) != 0 && errno != EINVAL) {
      return fail(errno);
    }
  }
  if (ownsFd_) {
    const int fd = fd_;
    fd_ = -1;
    ownsFd_ = false;
    // On Linux the descriptor is gone even when close is interrupted.
    if (::close(fd) != 0 && errno != EINTR) {
      return fail(errno);
    }
  }
  fd_ = -1;
  if (!tempPath_.isEmpty()) {
    if (rename(tempPath_.constData(), finalPath_.constData()) != 0) {
      return fail(errno);
    }
    tempPath_.clear();
  }
  return true;
}

bool OutputFile::fail(int error) {
  error_ = error;
  discard();
  return false;
}

void OutputFile::discard() {
  if (ownsFd_ && fd_ >= 0) {
    ::close(fd_);
  }
  fd_ = -1;
  ownsFd_ = false;
  if (!tempPath_.isEmpty()) {
    unlink(tempPath_.constData());
    tempPath_.clear();
  }
}
