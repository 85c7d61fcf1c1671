#pragma once

#include <pybind11/pybind11.h>

#include <span>
#include <string>

#include "conversions.h"
#include "engine/field_table.h"

namespace py = pybind11;

// Python's side of the field tables: one property per row that has a Python
// name, each value converted and checked as the row says (its type, the
// values it refuses, its bound), so a new field reaches Python with its row.

namespace field_properties_detail {

// The names of a choice, for messages: "RK4", "Leapfrog", ...
std::string choiceList(std::span<const std::string_view> names);
// Raises ValueError naming the field when the row refuses the value.
void checkRefusal(FieldProblem refusal, double value, std::string_view name);

}  // namespace field_properties_detail

// A Python value for the field, converted and checked before anything
// changes: TypeError for a value of the wrong kind, ValueError for one the
// field refuses. A choice is given by its name, in any case.
template <typename... Rs>
FieldValue fieldFromPython(const Field<Rs...>& field, py::handle value) {
  using namespace field_properties_detail;
  const std::string name(field.python);
  const char* what = name.c_str();
  const auto real = [&] {
    double d = toDouble(value, what);
    checkRefusal(field.refusal, d, field.python);
    return field.bound != nullptr ? field.bound(d) : d;
  };
  switch (field.type()) {
    case FieldType::Real:
    case FieldType::Pixels:
      return real();
    case FieldType::Single:
      return narrowToFloat(real());
    case FieldType::Integer: {
      const int32_t i = toInt32(value, what);
      checkRefusal(field.refusal, i, field.python);
      return i;
    }
    case FieldType::Flag:
      return toBool(value, what);
    case FieldType::Name:
      return toName(value, what);
    case FieldType::Vector:
      return toVector(value, what);
    case FieldType::Color:
      return toColor(value, what);
    case FieldType::Choice: {
      const auto& names = std::get<ChoiceMember<FirstRecord<Rs...>>>(field.member).names;
      if (!PyUnicode_Check(value.ptr())) {
        throw py::type_error(name + " must be a str, one of " + choiceList(names));
      }
      if (const auto index = choiceNamed(names, toName(value, what), true)) {
        return *index;
      }
      throw py::value_error(name + " must be one of " + choiceList(names) + ", not " +
                            std::string(py::repr(value)));
    }
  }
  return FieldValue();
}

// The field's value as Python sees it: a float, an int, a bool, a str, a
// read-only array of three, or a choice's name.
template <typename... Rs>
py::object fieldToPython(const Field<Rs...>& field, const FieldValue& value) {
  return std::visit(
      [&](const auto& v) -> py::object {
        using T = std::decay_t<decltype(v)>;
        if constexpr (std::is_same_v<T, Vector>) {
          return fromVector(v);
        } else if constexpr (std::is_same_v<T, std::array<float, 3>>) {
          const float c[3] = {v[0], v[1], v[2]};
          return fromColor(c);
        } else if constexpr (std::is_same_v<T, std::string>) {
          return fromUtf8(v);
        } else if constexpr (std::is_same_v<T, int32_t>) {
          if (field.type() == FieldType::Choice) {
            const auto& names = std::get<ChoiceMember<FirstRecord<Rs...>>>(field.member).names;
            return py::str(std::string(names[static_cast<std::size_t>(v)]));
          }
          return py::int_(v);
        } else if constexpr (std::is_same_v<T, float>) {
          return py::float_(static_cast<double>(v));
        } else {
          return py::cast(v);
        }
      },
      value);
}

// One read-write property per row with a Python name; find(self) gives the
// record afresh on every access.
template <typename Class, typename R, typename Find>
void bindFieldProperties(Class& cls, std::span<const Field<R>> table, Find find) {
  using Self = typename Class::type;
  for (const Field<R>& row : table) {
    if (row.python.empty()) {
      continue;
    }
    const Field<R>* field = &row;
    // The table's strings are literals: NUL-terminated, never freed.
    cls.def_property(
        row.python.data(),
        [field, find](Self& self) { return fieldToPython(*field, readField(*field, find(self))); },
        [field, find](Self& self, const py::handle& value) {
          const FieldValue converted = fieldFromPython(*field, value);
          writeField(*field, converted, find(self));
        },
        row.help.data());
  }
}
