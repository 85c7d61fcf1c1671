#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

#include "plist_value.h"

// The outcome of reading a property list: a value, or a one-line reason why
// there is none.
struct PlistReadResult {
  std::optional<PlistValue> value;
  QString error;
};

// Deeper nesting is refused: no datafile needs more than four levels, and the
// bound keeps reading, copying and writing a hostile file off the stack's end.
inline constexpr int kMaxPlistDepth = 256;

// Files larger than this are refused before they are read. A datafile of
// 10,000 bodies takes about 8 MB; the bound keeps a runaway file from taking
// all memory, and a world of the 80,000 bodies it allows is already far too
// large to step (the force pass is quadratic in the number of bodies).
inline constexpr qint64 kMaxPlistFileSize = qint64{64} * 1024 * 1024;

// Reads an XML property list (the root element plist holding one value).
// Comments, processing instructions, CDATA sections and a DOCTYPE are
// accepted; any malformed or unknown element is an error.
PlistReadResult readPlist(const QByteArray& xml);

// The bytes of a regular file, read within the size bound, or a one-line
// reason why there are none.
struct FileBytesResult {
  std::optional<QByteArray> bytes;
  QString error;
};
FileBytesResult readPlistFileBytes(const QString& path);

// Reads a property-list file; the error names the reason, not the file.
PlistReadResult readPlistFile(const QString& path);
