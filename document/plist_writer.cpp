#include "plist_writer.h"

#include "output_file.h"

#include <charconv>
#include <cmath>

namespace {

// The writer produces the text itself rather than through QXmlStreamWriter:
// the stream writer encodes and emits every token separately and took over
// a second for a 10,000-body datafile, where this takes a few dozen
// milliseconds. The output is plain XML that QXmlStreamReader reads back,
// which the tests and the fuzzer check.
class Writer {
 public:
  QByteArray take() { return std::move(out_); }

  void document(const PlistValue& root) {
    out_ +=
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
        "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
        "<plist version=\"1.0\">\n";
    value(root, 0);
    out_ += "</plist>\n";
  }

 private:
  // One tab per level; the root value sits at level 0, as is customary.
  void indent(int depth) { out_.append(depth, '\t'); }

  void value(const PlistValue& v, int depth) {
    indent(depth);
    switch (v.type()) {
      case PlistValue::Type::Dict:
        if (v.dict()->empty()) {
          out_ += "<dict/>\n";
          break;
        }
        out_ += "<dict>\n";
        for (const PlistEntry& entry : v.dict()->entries()) {
          indent(depth + 1);
          out_ += "<key>";
          text(entry.key);
          out_ += "</key>\n";
          value(entry.value, depth + 1);
        }
        indent(depth);
        out_ += "</dict>\n";
        break;
      case PlistValue::Type::Array:
        if (v.array()->empty()) {
          out_ += "<array/>\n";
          break;
        }
        out_ += "<array>\n";
        for (const PlistValue& item : *v.array()) {
          value(item, depth + 1);
        }
        indent(depth);
        out_ += "</array>\n";
        break;
      case PlistValue::Type::Real:
        out_ += "<real>";
        real(*v.realValue());
        out_ += "</real>\n";
        break;
      case PlistValue::Type::Integer: {
        char buffer[24];
        const auto result = std::to_chars(buffer, buffer + sizeof buffer, *v.integerValue());
        out_ += "<integer>";
        out_.append(buffer, result.ptr - buffer);
        out_ += "</integer>\n";
        break;
      }
      case PlistValue::Type::Boolean:
        out_ += *v.booleanValue() ? "<true/>\n" : "<false/>\n";
        break;
      case PlistValue::Type::String:
        out_ += "<string>";
        text(*v.stringValue());
        out_ += "</string>\n";
        break;
      case PlistValue::Type::Data:
        out_ += "<data>";
        out_ += v.dataValue()->toBase64();
        out_ += "</data>\n";
        break;
      case PlistValue::Type::Date:
        out_ += "<date>";
        text(v.dateValue()->text);
        out_ += "</date>\n";
        break;
    }
  }

  // The shortest text that reads back to the same double; the infinities
  // take their customary spellings.
  void real(double d) {
    if (std::isnan(d)) {
      out_ += "nan";
    } else if (std::isinf(d)) {
      out_ += d > 0 ? "+infinity" : "-infinity";
    } else {
      char buffer[32];
      const auto result = std::to_chars(buffer, buffer + sizeof buffer, d);
      out_.append(buffer, result.ptr - buffer);
    }
  }

  // Character data: markup characters are escaped, a carriage return is
  // written as a reference (a raw one would read back as a line feed), and
  // characters that XML cannot carry at all (control characters, unpaired
  // surrogates, U+FFFE and U+FFFF) are dropped, so that every file written
  // reads back.
  void text(const QString& s) {
    const qsizetype n = s.size();
    qsizetype start = 0;
    const auto flush = [&](qsizetype end) {
      if (end > start) {
        out_ += QStringView(s).mid(start, end - start).toUtf8();
      }
    };
    for (qsizetype i = 0; i < n; ++i) {
      const char16_t u = s[i].unicode();
      const char* replacement = nullptr;
      bool drop = false;
      if (u == u'&') {
        replacement = "&amp;";
      } else if (u == u'<') {
        replacement = "&lt;";
      } else if (u == u'>') {
        replacement = "&gt;";
      } else if (u == u'\r') {
        replacement = "&#13;";
      } else if (u < 0x20) {
        drop = u != u'\t' && u != u'\n';
      } else if (QChar::isHighSurrogate(u)) {
        if (i + 1 < n && QChar::isLowSurrogate(s[i + 1].unicode())) {
          ++i;
        } else {
          drop = true;
        }
      } else if (QChar::isLowSurrogate(u) || u >= 0xFFFE) {
        drop = true;
      }
      if (replacement != nullptr || drop) {
        flush(i);
        if (replacement != nullptr) {
          out_ += replacement;
        }
        start = i + 1;
      }
    }
    flush(n);
  }

  QByteArray out_;
};

}  // namespace

QByteArray writePlist(const PlistValue& root) {
  Writer writer;
  writer.document(root);
  return writer.take();
}

bool writePlistFile(const QString& path, const PlistValue& root, QString* error, FifoOpen fifo) {
  const QByteArray bytes = writePlist(root);
  OutputFile file;
  if (!file.open(path, fifo) || !file.write(bytes) || !file.commit()) {
    if (error != nullptr) {
      *error = file.errorString();
    }
    return false;
  }
  return true;
}
