#include "plist_value.h"

#include <bit>
#include <charconv>
#include <cmath>
#include <limits>

namespace {

// Dictionaries larger than this get a hash index; below it a linear search is
// cheaper than hashing (a body dictionary has fourteen keys).
constexpr std::size_t kIndexThreshold = 16;

std::size_t skipBlanks(QStringView text) {
  std::size_t i = 0;
  while (i < static_cast<std::size_t>(text.size()) && text[static_cast<qsizetype>(i)].isSpace()) {
    ++i;
  }
  return i;
}

// The number at the start of a text, after optional blanks and a sign, read
// the way C reads a double ("1.5e3kg" gives 1500, "inf" and "nan" count).
std::optional<double> leadingReal(QStringView text) {
  QStringView rest = text.mid(static_cast<qsizetype>(skipBlanks(text)));
  if (rest.startsWith(u'+')) {
    rest = rest.mid(1);
    if (rest.startsWith(u'-')) {
      return std::nullopt;
    }
  }
  // A double's text is ASCII; 400 characters hold every decimal form that
  // rounds to a distinct double, so longer texts are cut for the parse.
  const QByteArray ascii = rest.left(400).toLatin1();
  double value = 0.0;
  const auto [end, error] =
      std::from_chars(ascii.data(), ascii.data() + ascii.size(), value, std::chars_format::general);
  if (end == ascii.data()) {
    return std::nullopt;
  }
  if (error == std::errc::result_out_of_range) {
    // from_chars leaves the value untouched when the text is out of range;
    // C's reading gives an infinity or zero of the text's sign.
    const bool negative = ascii.startsWith('-');
    const QByteArray digits = ascii.left(end - ascii.data()).toLower();
    const qsizetype e = digits.indexOf('e');
    const bool tiny = e >= 0 && digits.mid(e + 1).startsWith('-');
    value = tiny ? 0.0 : std::numeric_limits<double>::infinity();
    return negative ? -value : value;
  }
  return value;
}

std::optional<bool> leadingTruth(QStringView text) {
  const QStringView rest = text.mid(static_cast<qsizetype>(skipBlanks(text)));
  if (rest.isEmpty()) {
    return std::nullopt;
  }
  const char16_t first = rest[0].toLower().unicode();
  if (first == u'y' || first == u't') {
    return true;
  }
  if (first == u'n' || first == u'f') {
    return false;
  }
  if (const auto number = leadingReal(rest)) {
    return *number != 0.0;
  }
  return std::nullopt;
}

int64_t saturateToInt64(double value) {
  // 2^63 is exactly representable; every double below it converts safely.
  constexpr double kTwo63 = 9223372036854775808.0;
  if (value >= kTwo63) {
    return std::numeric_limits<int64_t>::max();
  }
  if (value < -kTwo63) {
    return std::numeric_limits<int64_t>::min();
  }
  return static_cast<int64_t>(value);
}

QString realText(double value) {
  char buffer[32];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  return QString::fromLatin1(buffer, result.ptr - buffer);
}

}  // namespace

std::optional<int64_t> leadingInteger(QStringView text) {
  qsizetype i = static_cast<qsizetype>(skipBlanks(text));
  bool negative = false;
  if (i < text.size() && (text[i] == u'+' || text[i] == u'-')) {
    negative = text[i] == u'-';
    ++i;
  }
  if (i >= text.size() || !(text[i] >= u'0' && text[i] <= u'9')) {
    return std::nullopt;
  }
  // Accumulated as a negative number, whose range is one larger.
  constexpr int64_t kMin = std::numeric_limits<int64_t>::min();
  int64_t value = 0;
  bool saturated = false;
  for (; i < text.size() && text[i] >= u'0' && text[i] <= u'9'; ++i) {
    const int digit = text[i].unicode() - u'0';
    if (value < (kMin + digit) / 10) {
      saturated = true;
    } else {
      value = value * 10 - digit;
    }
  }
  if (saturated) {
    return negative ? kMin : std::numeric_limits<int64_t>::max();
  }
  if (negative) {
    return value;
  }
  return value == kMin ? std::numeric_limits<int64_t>::max() : -value;
}

int32_t saturateToInt32(int64_t value) {
  if (value > std::numeric_limits<int32_t>::max()) {
    return std::numeric_limits<int32_t>::max();
  }
  if (value < std::numeric_limits<int32_t>::min()) {
    return std::numeric_limits<int32_t>::min();
  }
  return static_cast<int32_t>(value);
}

float narrowToFloat(double value) {
  // Values between the largest float and the point halfway to the next power
  // of two still round to the largest float; beyond that lies infinity.
  constexpr double kOverflow = 3.4028235677973366e38;
  if (value >= kOverflow) {
    return std::numeric_limits<float>::infinity();
  }
  if (value <= -kOverflow) {
    return -std::numeric_limits<float>::infinity();
  }
  return static_cast<float>(value);
}

PlistValue::PlistValue(Storage storage) : storage_(std::move(storage)) {}
PlistValue::PlistValue(PlistDict dict) : storage_(std::make_unique<PlistDict>(std::move(dict))) {}
PlistValue::PlistValue(PlistArray array)
    : storage_(std::make_unique<PlistArray>(std::move(array))) {}
PlistValue PlistValue::real(double value) {
  return PlistValue(Storage(value));
}
PlistValue PlistValue::integer(int64_t value) {
  return PlistValue(Storage(value));
}
PlistValue PlistValue::boolean(bool value) {
  return PlistValue(Storage(value));
}
PlistValue PlistValue::string(QString value) {
  return PlistValue(Storage(std::move(value)));
}
PlistValue PlistValue::data(QByteArray value) {
  return PlistValue(Storage(std::move(value)));
}
PlistValue PlistValue::date(QString text) {
  return PlistValue(Storage(PlistDate{std::move(text)}));
}

PlistValue::PlistValue(const PlistValue& other)
    : storage_(std::visit(
          [](const auto& v) -> Storage {
            using T = std::decay_t<decltype(v)>;
            if constexpr (std::is_same_v<T, std::unique_ptr<PlistDict>>) {
              return std::make_unique<PlistDict>(*v);
            } else if constexpr (std::is_same_v<T, std::unique_ptr<PlistArray>>) {
              return std::make_unique<PlistArray>(*v);
            } else {
              return v;
            }
          },
          other.storage_)) {}

PlistValue::PlistValue(PlistValue&& other) noexcept = default;
PlistValue& PlistValue::operator=(PlistValue&& other) noexcept = default;
PlistValue::~PlistValue() = default;

PlistValue& PlistValue::operator=(const PlistValue& other) {
  if (this != &other) {
    *this = PlistValue(other);
  }
  return *this;
}

const PlistDict* PlistValue::dict() const {
  const auto* p = std::get_if<std::unique_ptr<PlistDict>>(&storage_);
  return p != nullptr ? p->get() : nullptr;
}

PlistDict* PlistValue::dict() {
  auto* p = std::get_if<std::unique_ptr<PlistDict>>(&storage_);
  return p != nullptr ? p->get() : nullptr;
}

const PlistArray* PlistValue::array() const {
  const auto* p = std::get_if<std::unique_ptr<PlistArray>>(&storage_);
  return p != nullptr ? p->get() : nullptr;
}

std::optional<double> PlistValue::toReal() const {
  if (const double* d = realValue()) {
    return *d;
  }
  if (const int64_t* i = integerValue()) {
    return static_cast<double>(*i);
  }
  if (const bool* b = booleanValue()) {
    return *b ? 1.0 : 0.0;
  }
  if (const QString* s = stringValue()) {
    return leadingReal(*s);
  }
  return std::nullopt;
}

std::optional<int64_t> realToInteger(double value) {
  if (std::isnan(value)) {
    return std::nullopt;
  }
  return saturateToInt64(value);
}

std::optional<int64_t> PlistValue::toInteger() const {
  if (const int64_t* i = integerValue()) {
    return *i;
  }
  if (const double* d = realValue()) {
    return realToInteger(*d);
  }
  if (const bool* b = booleanValue()) {
    return *b ? 1 : 0;
  }
  if (const QString* s = stringValue()) {
    return leadingInteger(*s);
  }
  return std::nullopt;
}

std::optional<bool> PlistValue::toBool() const {
  if (const bool* b = booleanValue()) {
    return *b;
  }
  if (const int64_t* i = integerValue()) {
    return *i != 0;
  }
  if (const double* d = realValue()) {
    return *d != 0.0;
  }
  if (const QString* s = stringValue()) {
    return leadingTruth(*s);
  }
  return std::nullopt;
}

std::optional<QString> PlistValue::toText() const {
  if (const QString* s = stringValue()) {
    return *s;
  }
  if (const int64_t* i = integerValue()) {
    return QString::number(*i);
  }
  if (const double* d = realValue()) {
    return realText(*d);
  }
  return std::nullopt;
}

bool PlistValue::operator==(const PlistValue& other) const {
  if (storage_.index() != other.storage_.index()) {
    return false;
  }
  return std::visit(
      [&](const auto& v) {
        using T = std::decay_t<decltype(v)>;
        const T& w = std::get<T>(other.storage_);
        if constexpr (std::is_same_v<T, double>) {
          // Bit patterns, so that a NaN equals itself and 0 differs from -0:
          // equality here means "reads back as the same value".
          return std::bit_cast<uint64_t>(v) == std::bit_cast<uint64_t>(w);
        } else if constexpr (std::is_same_v<T, PlistDate>) {
          return v.text == w.text;
        } else if constexpr (std::is_same_v<T, std::unique_ptr<PlistDict>> ||
                             std::is_same_v<T, std::unique_ptr<PlistArray>>) {
          return *v == *w;
        } else {
          return v == w;
        }
      },
      storage_);
}

std::optional<std::size_t> PlistDict::indexOf(QAnyStringView key) const {
  if (entries_.size() > kIndexThreshold) {
    const auto it = index_.constFind(key.toString());
    if (it == index_.constEnd()) {
      return std::nullopt;
    }
    return *it;
  }
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    if (QAnyStringView::equal(entries_[i].key, key)) {
      return i;
    }
  }
  return std::nullopt;
}

void PlistDict::insert(const QString& key, PlistValue value) {
  if (const auto i = indexOf(key)) {
    entries_[*i].value = std::move(value);
    return;
  }
  entries_.push_back(PlistEntry{key, std::move(value)});
  if (entries_.size() == kIndexThreshold + 1) {
    for (std::size_t i = 0; i < entries_.size(); ++i) {
      index_.insert(entries_[i].key, i);
    }
  } else if (entries_.size() > kIndexThreshold + 1) {
    index_.insert(key, entries_.size() - 1);
  }
}

const PlistValue* PlistDict::find(QAnyStringView key) const {
  const auto i = indexOf(key);
  return i ? &entries_[*i].value : nullptr;
}
