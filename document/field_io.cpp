#include "field_io.h"

namespace field_io_detail {

QString keyText(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

// Names live in the model as UTF-8 bytes. Bytes that are not UTF-8 (typed in
// through some other path) are written as replacement characters.
PlistValue nameValue(const char* name) {
  return PlistValue::string(QString::fromUtf8(name));
}

PlistValue pixelsValue(double size) {
  return PlistValue::integer(saturateToInt32(realToInteger(size).value_or(0)));
}

}  // namespace field_io_detail
