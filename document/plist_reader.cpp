#include "plist_reader.h"

#include "output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <QXmlStreamReader>
#include <cerrno>
#include <charconv>

namespace {

// Offset of the first byte that does not belong to a well-formed UTF-8
// sequence (overlong forms, surrogates and values past U+10FFFF included),
// or nothing when the whole text is UTF-8.
std::optional<qsizetype> firstInvalidUtf8(const QByteArray& bytes) {
  const auto* p = reinterpret_cast<const unsigned char*>(bytes.constData());
  const qsizetype n = bytes.size();
  qsizetype i = 0;
  while (i < n) {
    const unsigned char c = p[i];
    int length = 0;
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
    if (c < 0x80) {
      ++i;
      continue;
    } else if (c >= 0xC2 && c <= 0xDF) {
      length = 2;
    } else if (c >= 0xE0 && c <= 0xEF) {
      length = 3;
      low = c == 0xE0 ? 0xA0 : 0x80;
      high = c == 0xED ? 0x9F : 0xBF;
    } else if (c >= 0xF0 && c <= 0xF4) {
      length = 4;
      low = c == 0xF0 ? 0x90 : 0x80;
      high = c == 0xF4 ? 0x8F : 0xBF;
    } else {
      return i;
    }
    if (i + length > n || p[i + 1] < low || p[i + 1] > high) {
      return i;
    }
    for (int k = 2; k < length; ++k) {
      if ((p[i + k] & 0xC0) != 0x80) {
        return i;
      }
    }
    i += length;
  }
  return std::nullopt;
}

// True when the XML declaration names an encoding other than UTF-8.
bool namesOtherEncoding(const QByteArray& xml) {
  const qsizetype declarationEnd = xml.startsWith("<?xml") ? xml.indexOf("?>") : -1;
  if (declarationEnd <= 0) {
    return false;
  }
  const QByteArray declaration = xml.left(declarationEnd).toLower();
  const qsizetype e = declaration.indexOf("encoding");
  return e >= 0 && !declaration.mid(e).contains("utf-8");
}

// Where the first invalid UTF-8 byte is, when the document is meant to be
// UTF-8 (it names no other encoding) and is not. The XML reader finds such
// bytes too, but reports them at the position of its decoding buffer.
std::optional<QString> utf8Problem(const QByteArray& xml) {
  if (namesOtherEncoding(xml)) {
    return std::nullopt;
  }
  const std::optional<qsizetype> bad = firstInvalidUtf8(xml);
  if (!bad) {
    return std::nullopt;
  }
  const QByteArray before = xml.left(*bad);
  const qsizetype line = before.count('\n') + 1;
  const qsizetype column = *bad - (before.lastIndexOf('\n') + 1) + 1;
  return QStringLiteral("not valid XML: the text is not UTF-8 (byte 0x%1 at line %2, column %3)")
      .arg(static_cast<unsigned char>(xml[*bad]), 2, 16, QLatin1Char('0'))
      .arg(line)
      .arg(column);
}

class Reader {
 public:
  // A UTF-8 document is decoded in one pass before parsing, which is faster
  // than the stream reader's piecewise decoding; any other is handed over as
  // bytes, for the reader to decode as its declaration says.
  explicit Reader(const QByteArray& xml) : bytes_(xml) {
    if (!namesOtherEncoding(xml) && !firstInvalidUtf8(xml)) {
      xml_.addData(QString::fromUtf8(xml));
    } else {
      xml_.addData(xml);
    }
  }

  PlistReadResult read() {
    std::optional<PlistValue> root = readDocument();
    if (!root) {
      if (xml_.error() == QXmlStreamReader::NotWellFormedError) {
        if (std::optional<QString> problem = utf8Problem(bytes_)) {
          return {std::nullopt, *problem};
        }
      }
      return {std::nullopt, message()};
    }
    return {std::move(root), QString()};
  }

 private:
  std::optional<PlistValue> readDocument() {
    if (!nextElement()) {
      if (!xml_.hasError()) {
        fail(QStringLiteral("the document has no root element"));
      }
      return std::nullopt;
    }
    if (xml_.name() != u"plist") {
      notPlist_ = true;
      fail(QStringLiteral("the root element is <%1>, not <plist>").arg(xml_.name()));
      return std::nullopt;
    }
    if (!nextElement()) {
      if (!xml_.hasError()) {
        fail(QStringLiteral("<plist> holds no value"));
      }
      return std::nullopt;
    }
    std::optional<PlistValue> root = readValue(1);
    if (!root) {
      return std::nullopt;
    }
    if (nextElement()) {
      fail(QStringLiteral("<plist> holds more than one value"));
      return std::nullopt;
    }
    // Read to the end, so that a truncated or otherwise broken tail is
    // reported rather than ignored.
    while (!xml_.atEnd()) {
      xml_.readNext();
    }
    if (xml_.hasError()) {
      return std::nullopt;
    }
    return root;
  }

  // Advances to the next start element inside the current element. Returns
  // false at the current element's end tag, at the end of the document, and
  // on an error; text other than blanks between elements is an error.
  bool nextElement() {
    while (!xml_.atEnd()) {
      switch (xml_.readNext()) {
        case QXmlStreamReader::StartElement:
          return true;
        case QXmlStreamReader::EndElement:
          return false;
        case QXmlStreamReader::Characters:
          if (!xml_.isWhitespace()) {
            fail(QStringLiteral("unexpected text \"%1\"").arg(xml_.text().left(20)));
            return false;
          }
          break;
        default:
          break;
      }
    }
    return false;
  }

  // Reads the value whose start tag is the current token, up to its end tag.
  std::optional<PlistValue> readValue(int depth) {
    if (depth > kMaxPlistDepth) {
      fail(QStringLiteral("values are nested more than %1 levels deep").arg(kMaxPlistDepth));
      return std::nullopt;
    }
    const QStringView name = xml_.name();
    if (name == u"dict") {
      return readDict(depth);
    }
    if (name == u"array") {
      return readArray(depth);
    }
    if (name == u"real") {
      return readReal();
    }
    if (name == u"integer") {
      return readInteger();
    }
    if (name == u"true" || name == u"false") {
      const bool value = name == u"true";
      if (!readText()) {
        return std::nullopt;
      }
      return PlistValue::boolean(value);
    }
    if (name == u"string") {
      std::optional<QString> text = readText();
      if (!text) {
        return std::nullopt;
      }
      return PlistValue::string(std::move(*text));
    }
    if (name == u"data") {
      return readData();
    }
    if (name == u"date") {
      std::optional<QString> text = readText();
      if (!text) {
        return std::nullopt;
      }
      return PlistValue::date(std::move(*text));
    }
    fail(QStringLiteral("unknown element <%1>").arg(name));
    return std::nullopt;
  }

  std::optional<PlistValue> readDict(int depth) {
    PlistDict dict;
    while (nextElement()) {
      if (xml_.name() != u"key") {
        fail(QStringLiteral("<%1> where a <key> was expected").arg(xml_.name()));
        return std::nullopt;
      }
      std::optional<QString> key = readText();
      if (!key) {
        return std::nullopt;
      }
      if (!nextElement()) {
        if (!xml_.hasError()) {
          fail(QStringLiteral("the key \"%1\" has no value").arg(key->left(40)));
        }
        return std::nullopt;
      }
      std::optional<PlistValue> value = readValue(depth + 1);
      if (!value) {
        return std::nullopt;
      }
      dict.insert(*key, std::move(*value));
    }
    if (xml_.hasError()) {
      return std::nullopt;
    }
    return PlistValue(std::move(dict));
  }

  std::optional<PlistValue> readArray(int depth) {
    PlistArray array;
    while (nextElement()) {
      std::optional<PlistValue> value = readValue(depth + 1);
      if (!value) {
        return std::nullopt;
      }
      array.push_back(std::move(*value));
    }
    if (xml_.hasError()) {
      return std::nullopt;
    }
    return PlistValue(std::move(array));
  }

  std::optional<PlistValue> readReal() {
    const std::optional<QString> text = readText();
    if (!text) {
      return std::nullopt;
    }
    // The whole text must be a number; "+infinity" and "-infinity" are the
    // customary spellings of the infinities.
    QString t = text->trimmed();
    if (t.startsWith(u'+')) {
      t.remove(0, 1);
    }
    const QByteArray ascii = t.toLatin1();
    double value = 0.0;
    const auto [end, error] = std::from_chars(ascii.data(), ascii.data() + ascii.size(), value,
                                              std::chars_format::general);
    if (ascii.isEmpty() || end != ascii.data() + ascii.size() ||
        (error != std::errc() && error != std::errc::result_out_of_range)) {
      fail(QStringLiteral("\"%1\" is not a real number").arg(text->left(40)));
      return std::nullopt;
    }
    if (error == std::errc::result_out_of_range) {
      // Out of range: fall back on the lenient reading, which gives an
      // infinity or a zero of the right sign.
      return PlistValue::real(PlistValue::string(t).toReal().value_or(0.0));
    }
    return PlistValue::real(value);
  }

  std::optional<PlistValue> readInteger() {
    const std::optional<QString> text = readText();
    if (!text) {
      return std::nullopt;
    }
    const QString t = text->trimmed();
    QStringView digits = t;
    if (digits.startsWith(u'+') || digits.startsWith(u'-')) {
      digits = digits.mid(1);
    }
    bool allDigits = !digits.isEmpty();
    for (QChar c : digits) {
      allDigits = allDigits && c >= u'0' && c <= u'9';
    }
    const std::optional<int64_t> value = leadingInteger(t);
    if (!allDigits || !value) {
      fail(QStringLiteral("\"%1\" is not an integer").arg(text->left(40)));
      return std::nullopt;
    }
    return PlistValue::integer(*value);
  }

  std::optional<PlistValue> readData() {
    const std::optional<QString> text = readText();
    if (!text) {
      return std::nullopt;
    }
    QByteArray base64 = text->toLatin1();
    base64.removeIf([](char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; });
    auto decoded = QByteArray::fromBase64Encoding(base64, QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded) {
      fail(QStringLiteral("<data> does not hold base64 text"));
      return std::nullopt;
    }
    return PlistValue::data(std::move(*decoded));
  }

  // The text of the current element; an element inside it is an error.
  std::optional<QString> readText() {
    QString text = xml_.readElementText(QXmlStreamReader::ErrorOnUnexpectedElement);
    if (xml_.hasError()) {
      return std::nullopt;
    }
    return text;
  }

  void fail(const QString& reason) { xml_.raiseError(reason); }

  QString message() const {
    const QString where =
        QStringLiteral("line %1, column %2").arg(xml_.lineNumber()).arg(xml_.columnNumber());
    // An element where text belongs is well-formed XML but not a property
    // list, as are the reader's own complaints.
    if (xml_.error() == QXmlStreamReader::CustomError ||
        xml_.error() == QXmlStreamReader::UnexpectedElementError) {
      const QString kind = notPlist_ ? QStringLiteral("not a property list")
                                     : QStringLiteral("not a valid property list");
      return QStringLiteral("%1: %2 (%3)").arg(kind, xml_.errorString(), where);
    }
    if (xml_.error() == QXmlStreamReader::PrematureEndOfDocumentError) {
      return QStringLiteral("not valid XML: the document ends too early (%1)").arg(where);
    }
    return QStringLiteral("not valid XML: %1 (%2)").arg(xml_.errorString(), where);
  }

  const QByteArray& bytes_;
  QXmlStreamReader xml_;
  bool notPlist_ = false;
};

}  // namespace

PlistReadResult readPlist(const QByteArray& xml) {
  return Reader(xml).read();
}

FileBytesResult readPlistFileBytes(const QString& path) {
  const QByteArray name = QFile::encodeName(path);
  // Only a regular file is opened: opening a FIFO waits for a writer, and
  // opening a device may do anything. The path is looked at first, and the
  // descriptor again, in case something else took the path's place in
  // between; O_NONBLOCK keeps even that open from waiting.
  const auto notRegular = [](const struct stat& st) -> std::optional<FileBytesResult> {
    if (S_ISDIR(st.st_mode)) {
      return FileBytesResult{std::nullopt, QStringLiteral("is a directory")};
    }
    if (!S_ISREG(st.st_mode)) {
      return FileBytesResult{std::nullopt, QStringLiteral("not a regular file")};
    }
    return std::nullopt;
  };
  struct stat st {};
  if (stat(name.constData(), &st) != 0) {
    if (errno == ENOENT) {
      return {std::nullopt, QStringLiteral("no such file")};
    }
    return {std::nullopt, QStringLiteral("cannot be opened (%1)").arg(systemErrorText(errno))};
  }
  if (auto refused = notRegular(st)) {
    return *refused;
  }
  const int fd = ::open(name.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
  if (fd < 0) {
    return {std::nullopt, QStringLiteral("cannot be opened (%1)").arg(systemErrorText(errno))};
  }
  struct Closer {
    int fd;
    ~Closer() { ::close(fd); }
  } closer{fd};
  if (fstat(fd, &st) != 0) {
    return {std::nullopt, QStringLiteral("cannot be read (%1)").arg(systemErrorText(errno))};
  }
  if (auto refused = notRegular(st)) {
    return *refused;
  }
  if (st.st_size > kMaxPlistFileSize) {
    return {std::nullopt, QStringLiteral("too large (%1 MB; at most %2 MB are read)")
                              .arg(st.st_size / (1024 * 1024))
                              .arg(kMaxPlistFileSize / (1024 * 1024))};
  }
  // The file may grow while it is read: reading stops one byte past the
  // bound.
  QByteArray bytes(static_cast<qsizetype>(st.st_size) + 1, Qt::Uninitialized);
  qsizetype filled = 0;
  for (;;) {
    if (filled == bytes.size()) {
      if (filled > kMaxPlistFileSize) {
        return {std::nullopt, QStringLiteral("too large (at most %1 MB are read)")
                                  .arg(kMaxPlistFileSize / (1024 * 1024))};
      }
      bytes.resize(std::min<qsizetype>(2 * filled, kMaxPlistFileSize + 1));
    }
    const ssize_t got =
        ::read(fd, bytes.data() + filled, static_cast<size_t>(bytes.size() - filled));
    if (got == 0) {
      break;
    }
    if (got < 0) {
      if (errno == EINTR) {
        continue;
      }
      return {std::nullopt, QStringLiteral("cannot be read (%1)").arg(systemErrorText(errno))};
    }
    filled += got;
  }
  bytes.truncate(filled);
  return {std::move(bytes), QString()};
}

PlistReadResult readPlistFile(const QString& path) {
  FileBytesResult read = readPlistFileBytes(path);
  if (!read.bytes) {
    return {std::nullopt, read.error};
  }
  return readPlist(*read.bytes);
}
