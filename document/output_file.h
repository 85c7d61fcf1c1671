#pragma once

#include <QByteArray>
#include <QString>
#include <QtGlobal>
#include <cstddef>

// The system's text for an errno value ("No space left on device").
QString systemErrorText(int error);

// What opening a FIFO does while nobody reads it: wait for a reader (as
// `cat > fifo` does; the runner) or fail at once (a program that must not
// freeze; the application).
enum class FifoOpen { WaitForReader, FailWithoutReader };

// Where a program's output goes. A regular file, or a path that does not
// exist yet, is written to a new file beside it that replaces the old one
// only once every byte has reached it; until then, and after any failure,
// the old file stays exactly as it was. Anything else that exists (a FIFO, a
// terminal, a device such as /dev/null or /dev/full) is never replaced: it
// is written directly, as a stream. So is the process's own standard output
// or error under any name (/dev/stdout, /proc/self/fd/1): it is written
// through the descriptor the process already has, in order with the rest.
//
// QSaveFile would do for regular files, but it replaces devices and FIFOs
// with a regular file, and it loses the system's reason when the final flush
// fails ("Unknown error") or the file is read-only ("Existing file ... is not
// writable"). Every step here keeps its errno.
class OutputFile {
 public:
  OutputFile() = default;
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  // Without a successful commit the new file is removed again.
  ~OutputFile();

  bool open(const QString& path, FifoOpen fifo);
  // Writes to the process's standard output.
  bool openStandardOutput();
  // Writes all the bytes or fails. After a failure nothing more is written.
  bool write(const char* data, std::size_t size);
  bool write(const QByteArray& bytes) {
    return write(bytes.constData(), static_cast<std::size_t>(bytes.size()));
  }
  // Moves the write position of a new file, as lseek does with SEEK_SET,
  // SEEK_CUR or SEEK_END, for formats that fill in a header once the rest
  // is written. A stream cannot go back: it fails with "Illegal seek". The
  // new position, or -1 after a failure (then nothing more is written).
  qint64 seek(qint64 offset, int whence);
  // Makes the output final: a replacing file is synced, closed and renamed
  // over the old one; a stream is closed. False when any step failed.
  bool commit();
  // Why the last operation failed: the system's text, e.g. "Read-only file
  // system".
  QString errorString() const { return systemErrorText(error_); }

 private:
  bool fail(int error);
  bool openStream(const QByteArray& path, FifoOpen fifo);
  bool openReplacing(const QByteArray& path);
  void discard();

  int fd_ = -1;
  bool ownsFd_ = false;
  // Set while a new file waits to replace finalPath_.
  QByteArray tempPath_;
  QByteArray finalPath_;
  int error_ = 0;
};
