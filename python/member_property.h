#pragma once

#include <pybind11/pybind11.h>

namespace py = pybind11;

// The value as it is, for fields that Python reads without conversion.
inline constexpr auto kAsIs = [](auto value) { return value; };

// Defines a read-write property of the engine object that find(self) gives
// (the World of a World, the Body of a Body), found again on every access:
// get(object) reads it, set(object, value, name) converts and writes a new
// value, raising on a bad one before anything changes.
template <typename Class, typename Find, typename Get, typename Set>
void foundProperty(Class& cls, const char* name, Find find, Get get, Set set, const char* doc) {
  using Self = typename Class::type;
  cls.def_property(
      name, [find, get](Self& self) { return get(find(self)); },
      [find, set, name](Self& self, const py::object& value) { set(find(self), value, name); },
      doc);
}

// The same for one member: toPython converts its value, fromPython(value,
// name) a new one.
template <typename Class, typename Find, typename Member, typename ToPython, typename FromPython>
void memberProperty(Class& cls, const char* name, Find find, Member member, ToPython toPython,
                    FromPython fromPython, const char* doc) {
  foundProperty(
      cls, name, find, [member, toPython](auto& object) { return toPython(object.*member); },
      [member, fromPython](auto& object, const py::object& value, const char* what) {
        auto converted = fromPython(value, what);
        object.*member = converted;
      },
      doc);
}
