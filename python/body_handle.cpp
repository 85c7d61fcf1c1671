#include "body_handle.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>

#include "conversions.h"
#include "engine/body_fields.h"
#include "field_properties.h"

Body& BodyHandle::body() const {
  if (Body* b = world_->world().findBodyById(id_)) {
    return *b;
  }
  PyErr_SetString(PyExc_LookupError,
                  ("body " + std::to_string(id_) + " is no longer in the world").c_str());
  throw py::error_already_set();
}

bool BodyHandle::exists() const {
  return world_->world().findBodyById(id_) != nullptr;
}

Body& createBody(World& world, const py::kwargs& fields) {
  std::vector<std::pair<const BodyField*, FieldValue>> values;
  for (const auto& [key, value] : fields) {
    const std::string name = py::str(key);
    const auto row = std::find_if(bodyFields().begin(), bodyFields().end(),
                                  [&](const BodyField& f) { return f.python == name; });
    if (row == bodyFields().end()) {
      throw py::type_error("add_body() got an unexpected keyword argument '" + name + "'");
    }
    values.emplace_back(&*row, fieldFromPython(*row, value));
  }
  Body& b = *world.createBody();
  for (const auto& [field, value] : values) {
    writeField(*field, value, b);
  }
  return b;
}

void bindBody(py::module_& m) {
  py::class_<BodyHandle> cls(m, "Body", R"(One body of a World, found by its identifier.

A Body stays valid across steps: every access looks the body up again in its
world, since a step may replace the engine's body objects or merge the body
into another. Once the body is gone (removed, merged away, the world reset),
reading or writing a field raises LookupError; ``exists`` tells beforehand.
Vectors are read as read-only float64 arrays of 3; they are written from any
three real numbers.)");
  cls.def_property_readonly("id", &BodyHandle::id, "The identifier, unique within the world.");
  cls.def_property_readonly("exists", &BodyHandle::exists,
                            "Whether the world still holds a body with this identifier.");
  const auto body = [](const BodyHandle& h) -> Body& { return h.body(); };
  bindFieldProperties(cls, bodyFields(), body);
  cls.def("__eq__", [](const BodyHandle& a, const py::object& other) {
    if (!py::isinstance<BodyHandle>(other)) {
      return false;
    }
    const auto& b = other.cast<const BodyHandle&>();
    return a.world() == b.world() && a.id() == b.id();
  });
  cls.def("__hash__", [](const BodyHandle& h) {
    return py::hash(py::make_tuple(reinterpret_cast<std::uintptr_t>(h.world().get()), h.id()));
  });
  cls.def("__repr__", [](const BodyHandle& h) {
    std::string text = "<orrenvale.Body " + std::to_string(h.id());
    if (const Body* b = h.world()->world().findBodyById(h.id())) {
      text += " " + std::string(py::repr(fromUtf8(b->name)));
    } else {
      text += " (gone)";
    }
    return text + ">";
  });
}
