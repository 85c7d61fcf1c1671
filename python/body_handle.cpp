#include "body_handle.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>

#include "conversions.h"
#include "member_property.h"

namespace {

template <typename T, typename Convert>
std::optional<T> optionalField(const py::object& value, const char* what, Convert convert) {
  if (value.is_none()) {
    return std::nullopt;
  }
  return convert(value, what);
}

}  // namespace

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

Body& BodyFields::create(World& world) const {
  const auto n = optionalField<std::string>(name, "name", toName);
  const auto p = optionalField<Vector>(position, "position", toVector);
  const auto v = optionalField<Vector>(velocity, "velocity", toVector);
  const auto a = optionalField<Vector>(acceleration, "acceleration", toVector);
  const auto m = optionalField<double>(mass, "mass", toDouble);
  const auto r = optionalField<double>(radius, "radius", toDouble);
  const auto c = optionalField<std::array<float, 3>>(color, "color", toColor);
  const auto t = optionalField<bool>(trace_enable, "trace_enable", toBool);
  const auto s = optionalField<bool>(show_vectors, "show_vectors", toBool);

  Body& b = *world.createBody();
  if (n) {
    copyName(b.name, *n);
  }
  b.position = p.value_or(b.position);
  b.velocity = v.value_or(b.velocity);
  b.acceleration = a.value_or(b.acceleration);
  b.mass = m.value_or(b.mass);
  b.radius = r.value_or(b.radius);
  if (c) {
    std::copy(c->begin(), c->end(), b.color);
  }
  b.traceEnable = t.value_or(b.traceEnable);
  b.showVectors = s.value_or(b.showVectors);
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
  foundProperty(
      cls, "name", body, [](Body& b) { return fromUtf8(b.name); },
      [](Body& b, const py::object& v, const char* what) { copyName(b.name, toName(v, what)); },
      "The name (at most 254 bytes of UTF-8; longer names are cut at a character).");
  const auto vectorProperty = [&](const char* name, Vector Body::*member, const char* doc) {
    memberProperty(cls, name, body, member, fromVector, toVector, doc);
  };
  vectorProperty("position", &Body::position, "Centre of the sphere.");
  vectorProperty("velocity", &Body::velocity, "Velocity.");
  vectorProperty("acceleration", &Body::acceleration,
                 "Acceleration at the start of the last step (or of the last "
                 "compute_accelerations).");
  memberProperty(cls, "mass", body, &Body::mass, kAsIs, toDouble,
                 "Mass; 1e-12 or less in magnitude gives no acceleration.");
  memberProperty(cls, "radius", body, &Body::radius, kAsIs, toDouble,
                 "Radius of the sphere, for collisions and drawing.");
  foundProperty(
      cls, "color", body, [](Body& b) { return fromColor(b.color); },
      [](Body& b, const py::object& v, const char* what) {
        const std::array<float, 3> c = toColor(v, what);
        std::copy(c.begin(), c.end(), b.color);
      },
      "Red, green and blue, 0 to 1, kept in single precision.");
  memberProperty(cls, "trace_enable", body, &Body::traceEnable, kAsIs, toBool,
                 "Whether the body leaves trace points.");
  memberProperty(cls, "show_vectors", body, &Body::showVectors, kAsIs, toBool,
                 "Whether views draw the body's velocity and acceleration.");
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
