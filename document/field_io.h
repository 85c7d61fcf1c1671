#pragma once

#include <QString>
#include <functional>
#include <span>
#include <string_view>
#include <vector>

#include "engine/field_table.h"
#include "plist_value.h"

// Reading and writing the fields of a table (engine/field_table.h) as the
// keys of a datafile dictionary: the one reader and writer of the world's
// parameters, of each body and of each view.
//
// Writing: each stored field in row order, reals as reals (single precision
// widened), integers, booleans, names and choices as strings, pixels as whole
// numbers. Reading is lenient: a value of another type than expected gives its
// numeric, truth, integer or text value, or leaves the field as it is when it
// has none.

// One datafile key of a table: a row, and for a vector or a colour which of
// its three values.
struct FieldKey {
  QString key;
  std::size_t row = 0;
  int component = 0;
};

// The keys of a table in the order in which they are written.
template <typename... Rs>
const std::vector<FieldKey>& fieldKeys(std::span<const Field<Rs...>> table);

namespace field_io_detail {

QString keyText(std::string_view text);
PlistValue nameValue(const char* name);
// The datafile's form of a pixel size: truncated toward zero, within 32 bits.
PlistValue pixelsValue(double size);

}  // namespace field_io_detail

template <typename... Rs>
const std::vector<FieldKey>& fieldKeys(std::span<const Field<Rs...>> table) {
  // One table per record type: the keys are built once.
  static const std::vector<FieldKey> keys = [table] {
    std::vector<FieldKey> k;
    for (std::size_t row = 0; row < table.size(); ++row) {
      const Field<Rs...>& field = table[row];
      if (!field.stored()) {
        continue;
      }
      const QString stem = field_io_detail::keyText(field.key);
      switch (field.type()) {
        case FieldType::Vector:
        case FieldType::Color: {
          const auto& suffixes =
              field.type() == FieldType::Vector ? kVectorKeySuffixes : kColorKeySuffixes;
          for (int c = 0; c < 3; ++c) {
            k.push_back(
                {stem + field_io_detail::keyText(suffixes[static_cast<std::size_t>(c)]), row, c});
          }
          break;
        }
        default:
          k.push_back({stem, row, 0});
      }
    }
    return k;
  }();
  return keys;
}

// The value one key of a stored field writes.
template <typename... Rs, typename... Records>
PlistValue fieldKeyValue(const Field<Rs...>& field, int component, const Records&... records) {
  return visitField(
      field,
      [component](const auto& storage) {
        using T = std::remove_cvref_t<decltype(storage)>;
        if constexpr (field_detail::isChoiceRef<T>) {
          const auto names = storage.names();
          const auto index = static_cast<std::size_t>(storage.get());
          return PlistValue::string(
              field_io_detail::keyText(index < names.size() ? names[index] : names[0]));
        } else if constexpr (field_detail::isPixelsRef<T>) {
          return field_io_detail::pixelsValue(storage.value);
        } else if constexpr (std::is_same_v<T, Vector>) {
          return PlistValue::real(component == 0   ? storage.x
                                  : component == 1 ? storage.y
                                                   : storage.z);
        } else if constexpr (std::is_same_v<T, float[3]>) {
          return PlistValue::real(static_cast<double>(storage[component]));
        } else if constexpr (std::is_same_v<T, char[kNameSize]>) {
          return field_io_detail::nameValue(storage);
        } else if constexpr (std::is_same_v<T, double> || std::is_same_v<T, float>) {
          return PlistValue::real(static_cast<double>(storage));
        } else if constexpr (std::is_same_v<T, bool>) {
          return PlistValue::boolean(storage);
        } else {
          return PlistValue::integer(storage);
        }
      },
      records...);
}

// Adds every stored field to the dictionary in row order. A field stored when
// used is left out while it, and every field of its group, holds the value
// given in defaults (readFields of a record with its reset values).
template <typename... Rs, typename... Records>
void writeFieldsToDict(std::span<const Field<Rs...>> table, const FieldValues& defaults,
                       PlistDict& dict, const Records&... records) {
  std::vector<bool> used(table.size(), true);
  for (std::size_t row = 0; row < table.size(); ++row) {
    const Field<Rs...>& field = table[row];
    if (!(field.flags & kStoredWhenUsed)) {
      continue;
    }
    bool any = false;
    for (std::size_t other = 0; other < table.size(); ++other) {
      const bool member =
          other == row || (field.storedGroup != 0 && table[other].storedGroup == field.storedGroup);
      any =
          any || (member && !sameFieldValue(readField(table[other], records...), defaults[other]));
    }
    used[row] = any;
  }
  for (const FieldKey& key : fieldKeys(table)) {
    if (used[key.row]) {
      dict.insert(key.key, fieldKeyValue(table[key.row], key.component, records...));
    }
  }
}

// The stored key of the table with this text, or null.
template <typename... Rs>
const FieldKey* findFieldKey(std::span<const Field<Rs...>> table, const QString& key) {
  for (const FieldKey& k : fieldKeys(table)) {
    if (k.key == key) {
      return &k;
    }
  }
  return nullptr;
}

// Reads one key's value into its field. unknownChoice, if given, hears of a
// choice's text that names none of its choices (the field is left as it is).
template <typename... Rs, typename... Records>
void readFieldKey(const Field<Rs...>& field, int component, const PlistValue& value,
                  const std::function<void(const QString& text)>& unknownChoice,
                  Records&... records) {
  visitField(
      field,
      [&](auto&& storage) {
        using T = std::remove_cvref_t<decltype(storage)>;
        const auto real = [&]() -> std::optional<double> {
          const std::optional<double> r = value.toReal();
          if (r && field.bound != nullptr) {
            return field.bound(*r);
          }
          return r;
        };
        if constexpr (field_detail::isChoiceRef<T>) {
          if (const auto text = value.toText()) {
            const QByteArray utf8 = text->toUtf8();
            if (const auto index = choiceNamed(
                    storage.names(), std::string_view(utf8.constData(), utf8.size()), false)) {
              storage.set(*index);
            } else if (unknownChoice) {
              unknownChoice(*text);
            }
          }
        } else if constexpr (field_detail::isPixelsRef<T>) {
          if (const auto r = value.toReal()) {
            storage.value = static_cast<double>(narrowToFloat(*r));
          }
        } else if constexpr (std::is_same_v<T, Vector>) {
          if (const auto r = real()) {
            (component == 0 ? storage.x : component == 1 ? storage.y : storage.z) = *r;
          }
        } else if constexpr (std::is_same_v<T, float[3]>) {
          if (const auto r = real()) {
            storage[component] = narrowToFloat(*r);
          }
        } else if constexpr (std::is_same_v<T, char[kNameSize]>) {
          if (const auto text = value.toText()) {
            const QByteArray utf8 = text->toUtf8();
            copyName(storage, std::string_view(utf8.constData(), utf8.size()));
          }
        } else if constexpr (std::is_same_v<T, double>) {
          if (const auto r = real()) {
            storage = *r;
          }
        } else if constexpr (std::is_same_v<T, float>) {
          if (const auto r = value.toReal()) {
            const float f = narrowToFloat(*r);
            storage = field.bound != nullptr
                          ? static_cast<float>(field.bound(static_cast<double>(f)))
                          : f;
          }
        } else if constexpr (std::is_same_v<T, bool>) {
          if (const auto b = value.toBool()) {
            storage = *b;
          }
        } else {
          if (const auto i = value.toInteger()) {
            storage = saturateToInt32(*i);
          }
        }
      },
      records...);
}
