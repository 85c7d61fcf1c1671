#include "log_store.h"

#include <fcntl.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>
#include <vector>

namespace {

// Lines collect in memory up to this size before they go to the file.
constexpr std::size_t kBufferBytes = 1 << 20;

QString systemError() {
  return QString::fromLocal8Bit(std::strerror(errno));
}

// An unnamed file in the folder: created and unlinked at once, so only this
// descriptor knows it.
int openUnnamedFile(const QString& folder) {
  QByteArray pattern = QFile::encodeName(folder + "/orrenvale-log-XXXXXX");
  const int fd = mkostemp(pattern.data(), O_CLOEXEC);
  if (fd >= 0) {
    unlink(pattern.constData());
  }
  return fd;
}

}  // namespace

LogStore::LogStore(QString folder)
    : folder_(folder.isEmpty() ? QDir::tempPath() : std::move(folder)) {}

LogStore::~LogStore() {
  if (fd_ >= 0) {
    close(fd_);
  }
}

bool LogStore::append(std::string_view lines) {
  if (!error_.isEmpty()) {
    return false;
  }
  buffer_.append(lines);
  if (buffer_.size() >= kBufferBytes && !spill()) {
    buffer_.resize(buffer_.size() - lines.size());
    return false;
  }
  bytes_ += static_cast<int64_t>(lines.size());
  lines_ += std::count(lines.begin(), lines.end(), '\n');
  return true;
}

bool LogStore::spill() {
  if (fd_ < 0) {
    fd_ = openUnnamedFile(folder_);
    if (fd_ < 0) {
      error_ = systemError();
      return false;
    }
  }
  const off_t start = lseek(fd_, 0, SEEK_END);
  std::size_t done = 0;
  while (done < buffer_.size()) {
    const ssize_t n = write(fd_, buffer_.data() + done, buffer_.size() - done);
    if (n < 0 && errno == EINTR) {
      continue;
    }
    if (n <= 0) {
      error_ = n < 0 ? systemError() : QStringLiteral("the temporary file takes no more data");
      // What was written of this buffer goes, so the file holds whole lines.
      if (start >= 0 && ftruncate(fd_, start) != 0) {
        error_ += QStringLiteral(" (and the temporary file could not be mended)");
      }
      return false;
    }
    done += static_cast<std::size_t>(n);
  }
  buffer_.clear();
  return true;
}

void LogStore::clear() {
  std::string().swap(buffer_);
  if (fd_ >= 0) {
    close(fd_);
    fd_ = -1;
  }
  lines_ = 0;
  bytes_ = 0;
  error_.clear();
}

bool LogStore::copyTo(const std::function<bool(const char*, std::size_t)>& write) const {
  if (fd_ >= 0) {
    std::vector<char> chunk(kBufferBytes);
    off_t offset = 0;
    for (;;) {
      const ssize_t n = pread(fd_, chunk.data(), chunk.size(), offset);
      if (n < 0 && errno == EINTR) {
        continue;
      }
      if (n < 0) {
        return false;
      }
      if (n == 0) {
        break;
      }
      if (!write(chunk.data(), static_cast<std::size_t>(n))) {
        return false;
      }
      offset += n;
    }
  }
  return write(buffer_.data(), buffer_.size());
}

std::string LogStore::contents() const {
  std::string out;
  if (fd_ >= 0) {
    const off_t size = lseek(fd_, 0, SEEK_END);
    out.resize(static_cast<std::size_t>(std::max<off_t>(size, 0)));
    std::size_t done = 0;
    while (done < out.size()) {
      const ssize_t n = pread(fd_, out.data() + done, out.size() - done, static_cast<off_t>(done));
      if (n <= 0 && !(n < 0 && errno == EINTR)) {
        break;
      }
      done += static_cast<std::size_t>(std::max<ssize_t>(n, 0));
    }
    out.resize(done);
  }
  out += buffer_;
  return out;
}
