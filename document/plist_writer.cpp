#include "plist_writer.h"

#include <QBuffer>
#include <QSaveFile>
#include <QXmlStreamWriter>
#include <charconv>
#include <cmath>

namespace {

QString realText(double value) {
  if (std::isnan(value)) {
    return QStringLiteral("nan");
  }
  if (std::isinf(value)) {
    return value > 0 ? QStringLiteral("+infinity") : QStringLiteral("-infinity");
  }
  char buffer[32];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  return QString::fromLatin1(buffer, result.ptr - buffer);
}

bool allowedInXml(char32_t c) {
  return c == 0x9 || c == 0xA || c == 0xD || (c >= 0x20 && c <= 0xD7FF) ||
         (c >= 0xE000 && c <= 0xFFFD) || (c >= 0x10000 && c <= 0x10FFFF);
}

// True when every character may appear in XML text; checked on the UTF-16
// units directly, since nearly every string passes.
bool isXmlSafe(const QString& text) {
  const qsizetype n = text.size();
  for (qsizetype i = 0; i < n; ++i) {
    const char16_t u = text[i].unicode();
    if (u < 0x20) {
      if (u != 0x9 && u != 0xA && u != 0xD) {
        return false;
      }
    } else if (QChar::isHighSurrogate(u)) {
      if (i + 1 >= n || !QChar::isLowSurrogate(text[i + 1].unicode())) {
        return false;
      }
      ++i;
    } else if (QChar::isLowSurrogate(u) || u > 0xFFFD) {
      return false;
    }
  }
  return true;
}

// XML cannot carry control characters (nor unpaired surrogates), not even as
// character references; they are dropped so that every file written can be
// read again.
QString xmlSafe(const QString& text) {
  if (isXmlSafe(text)) {
    return text;
  }
  QList<char32_t> kept;
  for (char32_t c : text.toUcs4()) {
    if (allowedInXml(c)) {
      kept.append(c);
    }
  }
  return QString::fromUcs4(kept.constData(), kept.size());
}

void writeValue(QXmlStreamWriter& xml, const PlistValue& value) {
  switch (value.type()) {
    case PlistValue::Type::Dict:
      xml.writeStartElement(QStringLiteral("dict"));
      for (const PlistEntry& entry : value.dict()->entries()) {
        xml.writeTextElement(QStringLiteral("key"), xmlSafe(entry.key));
        writeValue(xml, entry.value);
      }
      xml.writeEndElement();
      break;
    case PlistValue::Type::Array:
      xml.writeStartElement(QStringLiteral("array"));
      for (const PlistValue& item : *value.array()) {
        writeValue(xml, item);
      }
      xml.writeEndElement();
      break;
    case PlistValue::Type::Real:
      xml.writeTextElement(QStringLiteral("real"), realText(*value.realValue()));
      break;
    case PlistValue::Type::Integer:
      xml.writeTextElement(QStringLiteral("integer"), QString::number(*value.integerValue()));
      break;
    case PlistValue::Type::Boolean:
      xml.writeEmptyElement(*value.booleanValue() ? QStringLiteral("true")
                                                  : QStringLiteral("false"));
      break;
    case PlistValue::Type::String:
      xml.writeTextElement(QStringLiteral("string"), xmlSafe(*value.stringValue()));
      break;
    case PlistValue::Type::Data:
      xml.writeTextElement(QStringLiteral("data"),
                           QString::fromLatin1(value.dataValue()->toBase64()));
      break;
    case PlistValue::Type::Date:
      xml.writeTextElement(QStringLiteral("date"), xmlSafe(value.dateValue()->text));
      break;
  }
}

void writeDocument(QIODevice& device, const PlistValue& root) {
  QXmlStreamWriter xml(&device);
  xml.setAutoFormatting(true);
  // A negative indent means one tab per level, the customary layout.
  xml.setAutoFormattingIndent(-1);
  xml.writeStartDocument();
  xml.writeDTD(
      QStringLiteral("<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                     "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">"));
  xml.writeStartElement(QStringLiteral("plist"));
  xml.writeAttribute(QStringLiteral("version"), QStringLiteral("1.0"));
  writeValue(xml, root);
  xml.writeEndElement();
  xml.writeEndDocument();
}

}  // namespace

QByteArray writePlist(const PlistValue& root) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  writeDocument(buffer, root);
  return bytes;
}

bool writePlistFile(const QString& path, const PlistValue& root, QString* error) {
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly)) {
    if (error != nullptr) {
      *error = file.errorString();
    }
    return false;
  }
  writeDocument(file, root);
  if (!file.commit()) {
    if (error != nullptr) {
      *error = file.errorString();
    }
    return false;
  }
  return true;
}
