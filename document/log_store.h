#pragma once

#include <QString>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

// An append-only log of text lines whose memory stays bounded however long
// it grows: lines are gathered in a small buffer and written on to an
// unnamed temporary file (it disappears with the program, even after a
// crash). Nothing is ever dropped: the whole log can be copied out again.
class LogStore {
 public:
  // folder: where the unnamed file is made; the temporary folder ($TMPDIR
  // or /tmp) by default.
  explicit LogStore(QString folder = QString());
  ~LogStore();
  LogStore(const LogStore&) = delete;
  LogStore& operator=(const LogStore&) = delete;

  // Appends whole lines (text ending in '\n'). False when the temporary
  // file cannot take them (a full disk, say); error() then says why and the
  // lines are not stored.
  bool append(std::string_view lines);
  // Forgets every line.
  void clear();

  int64_t lineCount() const { return lines_; }
  int64_t byteCount() const { return bytes_; }
  const QString& error() const { return error_; }

  // Hands the whole log to write, in pieces, in order; false when reading it
  // back or write fails.
  bool copyTo(const std::function<bool(const char* data, std::size_t size)>& write) const;
  // The whole log as one string: for tests and small logs.
  std::string contents() const;

 private:
  bool spill();

  QString folder_;
  int fd_ = -1;
  std::string buffer_;
  int64_t lines_ = 0;
  int64_t bytes_ = 0;
  QString error_;
};
