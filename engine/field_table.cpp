#include "field_table.h"

#include <bit>

namespace {

char lower(char c) {
  return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

bool sameName(std::string_view a, std::string_view b, bool ignoreCase) {
  if (!ignoreCase) {
    return a == b;
  }
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(),
                                            [](char x, char y) { return lower(x) == lower(y); });
}

bool sameBitsOf(float a, float b) {
  return std::bit_cast<uint32_t>(a) == std::bit_cast<uint32_t>(b);
}

}  // namespace

std::optional<int32_t> choiceNamed(std::span<const std::string_view> names, std::string_view text,
                                   bool ignoreCase) {
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (sameName(names[i], text, ignoreCase)) {
      return static_cast<int32_t>(i);
    }
  }
  return std::nullopt;
}

bool sameFieldValue(const FieldValue& a, const FieldValue& b) {
  if (a.index() != b.index()) {
    return false;
  }
  return std::visit(
      [&](const auto& x) {
        using T = std::decay_t<decltype(x)>;
        const T& y = std::get<T>(b);
        if constexpr (std::is_same_v<T, double> || std::is_same_v<T, Vector>) {
          return sameBits(x, y);
        } else if constexpr (std::is_same_v<T, float>) {
          return sameBitsOf(x, y);
        } else if constexpr (std::is_same_v<T, std::array<float, 3>>) {
          return sameBitsOf(x[0], y[0]) && sameBitsOf(x[1], y[1]) && sameBitsOf(x[2], y[2]);
        } else {
          return x == y;
        }
      },
      a);
}

uint64_t changedFields(const FieldValues& a, const FieldValues& b) {
  uint64_t rows = 0;
  for (std::size_t i = 0; i < a.size() && i < b.size(); ++i) {
    if (!sameFieldValue(a[i], b[i])) {
      rows |= uint64_t{1} << i;
    }
  }
  return rows;
}

bool sameFields(const FieldValues& a, const FieldValues& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), sameFieldValue);
}
