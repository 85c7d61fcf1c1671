#include "palettes/number_text.h"

#include <locale.h>
#include <charconv>
#include <cstdlib>
#include <limits>
#include <string>

namespace {

bool isSpace(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

// Scans an optional sign and digits from i; returns the number of digits.
std::size_t skipDigits(const std::string& s, std::size_t& i) {
  const std::size_t start = i;
  while (i < s.size() && isDigit(s[i])) {
    ++i;
  }
  return i - start;
}

std::size_t skipSpaceAndSign(const std::string& s, std::size_t& i) {
  while (i < s.size() && isSpace(s[i])) {
    ++i;
  }
  const std::size_t numberStart = i;
  if (i < s.size() && (s[i] == '+' || s[i] == '-')) {
    ++i;
  }
  return numberStart;
}

// strtod follows LC_NUMERIC, which the application takes from the user's
// environment; the fields always use the C decimal point.
locale_t cLocale() {
  static const locale_t locale = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr));
  return locale;
}

}  // namespace

QString formatReal(double value) {
  // to_chars with the general format and precision 6 is printf's "%g" in the
  // C locale, whatever LC_NUMERIC says.
  char buffer[32];
  const auto result =
      std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, 6);
  return QString::fromLatin1(buffer, static_cast<qsizetype>(result.ptr - buffer));
}

QString formatInt(int32_t value) {
  return QString::number(value);
}

double readReal(const QString& text) {
  const std::string s = text.toStdString();
  std::size_t i = 0;
  const std::size_t start = skipSpaceAndSign(s, i);
  std::size_t digits = skipDigits(s, i);
  if (i < s.size() && s[i] == '.') {
    ++i;
    digits += skipDigits(s, i);
  }
  if (digits == 0) {
    return 0.0;
  }
  std::size_t end = i;
  if (i < s.size() && (s[i] == 'e' || s[i] == 'E')) {
    std::size_t j = i + 1;
    if (j < s.size() && (s[j] == '+' || s[j] == '-')) {
      ++j;
    }
    if (skipDigits(s, j) > 0) {
      end = j;
    }
  }
  const std::string number = s.substr(start, end - start);
  return strtod_l(number.c_str(), nullptr, cLocale());
}

int32_t readInt(const QString& text) {
  const std::string s = text.toStdString();
  std::size_t i = 0;
  const std::size_t start = skipSpaceAndSign(s, i);
  if (skipDigits(s, i) == 0) {
    return 0;
  }
  const std::string number = s.substr(start, i - start);
  // strtol saturates at the long range, which holds the 32-bit range.
  const long value = strtol_l(number.c_str(), nullptr, 10, cLocale());
  if (value > std::numeric_limits<int32_t>::max()) {
    return std::numeric_limits<int32_t>::max();
  }
  if (value < std::numeric_limits<int32_t>::min()) {
    return std::numeric_limits<int32_t>::min();
  }
  return static_cast<int32_t>(value);
}
