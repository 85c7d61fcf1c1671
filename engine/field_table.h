#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

#include "names.h"
#include "vector.h"

// One table of fields per record (a body, the world's parameters, a view):
// each row says how the field is stored in a datafile, shown and edited in a
// palette, named in an undo title and in Python, and whether it changes the
// motion. Every place that lists fields reads the table, so a new field is one
// row. Rows point at their members; a row of a table over several records
// (Rs) points into one of them.

// How a field's value is kept, and so how it is stored, shown and compared.
enum class FieldType {
  Real,     // double
  Single,   // float, widened to double wherever it is stored or shown
  Integer,  // 32-bit signed
  Flag,     // bool
  Name,     // NUL-terminated UTF-8 in a fixed buffer
  Vector,   // three doubles, stored under the key followed by " X", " Y", " Z"
  Color,    // three floats, stored under the key followed by " R", " G", " B"
  Choice,   // one of a list of names, stored by its name
  Pixels,   // a size kept as a double, stored as a whole number, read in single precision
};

enum FieldFlag : unsigned {
  // A different value gives the bodies different paths: predicted paths are
  // worked out again when it changes.
  kChangesMotion = 1u << 0,
  // Written to a datafile only when the record does not hold its reset value
  // (or, with a group, when any field of the group does not), so that the
  // datafiles of records that never use it keep exactly the keys they had.
  kStoredWhenUsed = 1u << 1,
};

// A choice kept by the record as an enumeration: read and written as the
// index of its name.
template <typename R>
struct ChoiceMember {
  int32_t (*get)(const R& record);
  void (*set)(R& record, int32_t index);
  std::span<const std::string_view> names;

  bool operator==(const ChoiceMember& other) const { return get == other.get && set == other.set; }
};

// A double that is stored as a whole number of pixels.
template <typename R>
struct PixelsMember {
  double R::*member;

  bool operator==(const PixelsMember&) const = default;
};

template <typename R>
using NameMember = char (R::*)[kNameSize];
template <typename R>
using ColorMember = float (R::*)[3];

template <typename... Rs>
using FieldMember = std::variant<double Rs::*..., float Rs::*..., int32_t Rs::*..., bool Rs::*...,
                                 NameMember<Rs>..., Vector Rs::*..., ColorMember<Rs>...,
                                 ChoiceMember<Rs>..., PixelsMember<Rs>...>;

// Why a value does no good: what happens with it, for a tooltip, or null
// when the value is fine.
using FieldProblem = const char* (*)(double value);

template <typename First, typename... Rest>
struct FirstRecordOf {
  using Type = First;
};
template <typename... Rs>
using FirstRecord = typename FirstRecordOf<Rs...>::Type;

template <typename... Rs>
struct Field {
  // The datafile key (for a vector or a colour, the start of its three
  // keys); empty when the field is not stored.
  std::string_view key = {};
  // What the palette's label says, and what an undo title calls the field
  // ("Change Mass of Earth").
  std::string_view label = {};
  std::string_view title = {};
  // The attribute in Python, and for a body the World's array of every
  // body's value ("positions"); empty when there is none.
  std::string_view python = {};
  std::string_view pythonArray = {};
  FieldMember<Rs...> member = {};
  unsigned flags = 0;
  // Fields stored when used: those with the same group are written together.
  int storedGroup = 0;
  // A value the record keeps but the simulation cannot use: palettes mark it
  // with a warning that says what happens.
  FieldProblem warning = nullptr;
  // A value that is refused: a palette field reverts, the runner stops with
  // the message, Python raises ValueError with it.
  FieldProblem refusal = nullptr;
  // The form in which an outside value is kept (the clock's bound on its
  // speed, say), applied wherever a value comes from outside the program.
  double (*bound)(double value) = nullptr;
  // What the field is and does, for Python's help and palette tooltips.
  std::string_view help = {};
  // Why the field has no effect on this record as it stands (another
  // integrator is chosen, say), for a palette that disables it; null while
  // it has one.
  const char* (*unusedBecause)(const FirstRecord<Rs...>& record) = nullptr;

  FieldType type() const;
  bool stored() const { return !key.empty(); }
};

// The names of a choice compare without regard to case where a user types
// them (the runner's options, Python).
std::optional<int32_t> choiceNamed(std::span<const std::string_view> names, std::string_view text,
                                   bool ignoreCase);

namespace field_detail {

template <typename M>
struct MemberTraits;
template <typename T, typename R>
struct MemberTraits<T R::*> {
  using Record = R;
};
template <typename R>
struct MemberTraits<ChoiceMember<R>> {
  using Record = R;
};
template <typename R>
struct MemberTraits<PixelsMember<R>> {
  using Record = R;
};

// The record of type X among the records given (const or not).
template <typename X, typename First, typename... Rest>
auto& recordOf(First& first, Rest&... rest) {
  if constexpr (std::is_same_v<std::remove_const_t<First>, X>) {
    return first;
  } else {
    return recordOf<X>(rest...);
  }
}

template <typename M, typename T>
inline constexpr bool isMember = std::is_same_v<M, T>;

}  // namespace field_detail

// A choice of a record, as the index of its name.
template <typename R>
struct ChoiceRef {
  R& record;
  const ChoiceMember<std::remove_const_t<R>>& member;

  int32_t get() const { return member.get(record); }
  void set(int32_t index) const requires(!std::is_const_v<R>) { member.set(record, index); }
  std::span<const std::string_view> names() const { return member.names; }
};

// A size in pixels of a record.
template <typename T>
struct PixelsRef {
  T& value;
};

// Calls f with the field's storage in the given records: double&, float&,
// int32_t&, bool&, char (&)[kNameSize], Vector&, float (&)[3] (all const
// when the records are), a ChoiceRef or a PixelsRef.
template <typename... Rs, typename F, typename... Records>
decltype(auto) visitField(const Field<Rs...>& field, F&& f, Records&... records) {
  return std::visit(
      [&](const auto& member) -> decltype(auto) {
        using M = std::decay_t<decltype(member)>;
        using X = typename field_detail::MemberTraits<M>::Record;
        auto& record = field_detail::recordOf<X>(records...);
        using RecordRef = std::remove_reference_t<decltype(record)>;
        if constexpr (std::is_same_v<M, ChoiceMember<X>>) {
          return f(ChoiceRef<RecordRef>{record, member});
        } else if constexpr (std::is_same_v<M, PixelsMember<X>>) {
          using T = std::conditional_t<std::is_const_v<RecordRef>, const double, double>;
          return f(PixelsRef<T>{record.*(member.member)});
        } else {
          return f(record.*member);
        }
      },
      field.member);
}

template <typename... Rs>
FieldType Field<Rs...>::type() const {
  return std::visit(
      [](const auto& m) {
        using M = std::decay_t<decltype(m)>;
        using X = typename field_detail::MemberTraits<M>::Record;
        if constexpr (std::is_same_v<M, double X::*>) {
          return FieldType::Real;
        } else if constexpr (std::is_same_v<M, float X::*>) {
          return FieldType::Single;
        } else if constexpr (std::is_same_v<M, int32_t X::*>) {
          return FieldType::Integer;
        } else if constexpr (std::is_same_v<M, bool X::*>) {
          return FieldType::Flag;
        } else if constexpr (std::is_same_v<M, char(X::*)[kNameSize]>) {
          return FieldType::Name;
        } else if constexpr (std::is_same_v<M, Vector X::*>) {
          return FieldType::Vector;
        } else if constexpr (std::is_same_v<M, float(X::*)[3]>) {
          return FieldType::Color;
        } else if constexpr (std::is_same_v<M, ChoiceMember<X>>) {
          return FieldType::Choice;
        } else {
          return FieldType::Pixels;
        }
      },
      member);
}

// The suffixes of the three keys, and of the three values, of a vector or a
// colour.
inline constexpr std::array<std::string_view, 3> kVectorKeySuffixes = {" X", " Y", " Z"};
inline constexpr std::array<std::string_view, 3> kColorKeySuffixes = {" R", " G", " B"};

// One field's value held apart from its record: what an undo entry keeps to
// put it back exactly, or what the path predictor compares. A choice is kept
// as its index, pixels as the double.
using FieldValue =
    std::variant<double, float, int32_t, bool, std::string, Vector, std::array<float, 3>>;

namespace field_detail {
template <typename T>
inline constexpr bool isChoiceRef = false;
template <typename R>
inline constexpr bool isChoiceRef<ChoiceRef<R>> = true;
template <typename T>
inline constexpr bool isPixelsRef = false;
template <typename T>
inline constexpr bool isPixelsRef<PixelsRef<T>> = true;
}  // namespace field_detail

template <typename... Rs, typename... Records>
FieldValue readField(const Field<Rs...>& field, const Records&... records) {
  return visitField(
      field,
      [](const auto& storage) -> FieldValue {
        using T = std::remove_cvref_t<decltype(storage)>;
        if constexpr (field_detail::isChoiceRef<T>) {
          return storage.get();
        } else if constexpr (field_detail::isPixelsRef<T>) {
          return storage.value;
        } else if constexpr (std::is_same_v<T, char[kNameSize]>) {
          return std::string(storage);
        } else if constexpr (std::is_same_v<T, float[3]>) {
          return std::array<float, 3>{storage[0], storage[1], storage[2]};
        } else {
          return storage;
        }
      },
      records...);
}

// Puts a value read with readField back.
template <typename... Rs, typename... Records>
void writeField(const Field<Rs...>& field, const FieldValue& value, Records&... records) {
  visitField(
      field,
      [&](auto&& storage) {
        using T = std::remove_cvref_t<decltype(storage)>;
        if constexpr (field_detail::isChoiceRef<T>) {
          storage.set(std::get<int32_t>(value));
        } else if constexpr (field_detail::isPixelsRef<T>) {
          storage.value = std::get<double>(value);
        } else if constexpr (std::is_same_v<T, char[kNameSize]>) {
          copyName(storage, std::get<std::string>(value));
        } else if constexpr (std::is_same_v<T, float[3]>) {
          const auto& c = std::get<std::array<float, 3>>(value);
          std::copy(c.begin(), c.end(), storage);
        } else {
          storage = std::get<T>(value);
        }
      },
      records...);
}

// Equal bit for bit (0 and -0 differ, a NaN equals the same NaN): an exact
// undo and the predictor's cache compare this way.
bool sameFieldValue(const FieldValue& a, const FieldValue& b);

// Every field of a table, in row order.
using FieldValues = std::vector<FieldValue>;

template <typename... Rs, typename... Records>
FieldValues readFields(std::span<const Field<Rs...>> table, const Records&... records) {
  FieldValues values;
  values.reserve(table.size());
  for (const Field<Rs...>& field : table) {
    values.push_back(readField(field, records...));
  }
  return values;
}

// Appends the values of the rows that carry all the given flags.
template <typename... Rs, typename... Records>
void appendFields(std::span<const Field<Rs...>> table, unsigned flags, FieldValues& values,
                  const Records&... records) {
  for (const Field<Rs...>& field : table) {
    if ((field.flags & flags) == flags) {
      values.push_back(readField(field, records...));
    }
  }
}

// Puts back what appendFields appended, from values[at]; returns the index
// after them.
template <typename... Rs, typename... Records>
std::size_t writeAppendedFields(std::span<const Field<Rs...>> table, unsigned flags,
                                const FieldValues& values, std::size_t at, Records&... records) {
  for (const Field<Rs...>& field : table) {
    if ((field.flags & flags) == flags) {
      writeField(field, values[at++], records...);
    }
  }
  return at;
}

// Every value the same bit for bit.
bool sameFields(const FieldValues& a, const FieldValues& b);

// The rows whose values differ, as the bits 1 << row (tables have at most 64
// rows).
uint64_t changedFields(const FieldValues& a, const FieldValues& b);

// Puts back the rows given as bits.
template <typename... Rs, typename... Records>
void writeFields(std::span<const Field<Rs...>> table, const FieldValues& values, uint64_t rows,
                 Records&... records) {
  for (std::size_t i = 0; i < table.size(); ++i) {
    if (rows & (uint64_t{1} << i)) {
      writeField(table[i], values[i], records...);
    }
  }
}

// The row whose member is the given one; table.size() when none is.
template <typename... Rs, typename M>
std::size_t fieldRow(std::span<const Field<Rs...>> table, M member) {
  const FieldMember<Rs...> wanted(member);
  for (std::size_t i = 0; i < table.size(); ++i) {
    if (table[i].member == wanted) {
      return i;
    }
  }
  return table.size();
}

// The bit of that row; 0 when there is none.
template <typename... Rs, typename M>
uint64_t fieldBit(std::span<const Field<Rs...>> table, M member) {
  const std::size_t row = fieldRow(table, member);
  return row < table.size() ? uint64_t{1} << row : 0;
}

// The rows that carry all the given flags.
template <typename... Rs>
uint64_t fieldsFlagged(std::span<const Field<Rs...>> table, unsigned flags) {
  uint64_t rows = 0;
  for (std::size_t i = 0; i < table.size(); ++i) {
    if ((table[i].flags & flags) == flags) {
      rows |= uint64_t{1} << i;
    }
  }
  return rows;
}
