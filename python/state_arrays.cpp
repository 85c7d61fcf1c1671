#include "state_arrays.h"

#include <cstring>
#include <string>
#include <vector>

#include "conversions.h"
#include "document/plist_value.h"
#include "engine/body_fields.h"

namespace {

constexpr const char* kIds = "ids";

py::ssize_t bodyCount(const World& world) {
  return world.bodies->count();
}

// The body field whose World array has this name, or null.
const BodyField* arrayField(std::string_view name) {
  for (const BodyField& field : bodyFields()) {
    if (!field.pythonArray.empty() && field.pythonArray == name) {
      return &field;
    }
  }
  return nullptr;
}

// Three columns for a vector or a colour, one for a number.
py::ssize_t columns(const BodyField& field) {
  return field.type() == FieldType::Vector || field.type() == FieldType::Color ? 3 : 0;
}

std::string knownNames() {
  std::string names = kIds;
  for (const BodyField& field : bodyFields()) {
    if (!field.pythonArray.empty()) {
      names += ", " + std::string(field.pythonArray);
    }
  }
  return names;
}

template <typename T>
py::array tableArray(const World& world, py::ssize_t cols, const auto& fill) {
  const py::ssize_t n = bodyCount(world);
  py::array_t<T> a = cols == 0 ? py::array_t<T>(n) : py::array_t<T>({n, cols});
  T* out = a.mutable_data();
  forEachItem<Body>(*world.bodies, [&](const Body& b) { out = fill(b, out); });
  return a;
}

// One array of a set_state call, checked and converted, waiting to be written.
struct PendingWrite {
  const BodyField* field = nullptr;
  py::array_t<double> values;
};

}  // namespace

py::array readStateArray(const World& world, const char* name) {
  if (std::strcmp(name, kIds) == 0) {
    return tableArray<int32_t>(world, 0, [](const Body& b, int32_t* out) {
      *out = b.id;
      return out + 1;
    });
  }
  const BodyField* field = arrayField(name);
  if (field == nullptr) {
    throw py::value_error(std::string("unknown state array '") + name + "'");
  }
  switch (field->type()) {
    case FieldType::Vector:
      return tableArray<double>(world, 3, [&](const Body& b, double* out) {
        const Vector v = std::get<Vector>(readField(*field, b));
        out[0] = v.x;
        out[1] = v.y;
        out[2] = v.z;
        return out + 3;
      });
    case FieldType::Color:
      // The engine keeps colours in single precision.
      return tableArray<float>(world, 3, [&](const Body& b, float* out) {
        const auto c = std::get<std::array<float, 3>>(readField(*field, b));
        return std::copy(c.begin(), c.end(), out);
      });
    default:
      return tableArray<double>(world, 0, [&](const Body& b, double* out) {
        *out = std::get<double>(readField(*field, b));
        return out + 1;
      });
  }
}

py::dict readState(const World& world) {
  py::dict state;
  state[kIds] = readStateArray(world, kIds);
  for (const BodyField& field : bodyFields()) {
    if (!field.pythonArray.empty()) {
      const std::string name(field.pythonArray);
      state[name.c_str()] = readStateArray(world, name.c_str());
    }
  }
  return state;
}

void writeState(World& world, const py::dict& arrays) {
  const py::ssize_t n = bodyCount(world);
  std::vector<PendingWrite> writes;
  for (const auto& [key, value] : arrays) {
    if (!py::isinstance<py::str>(key)) {
      throw py::type_error("state array names are str");
    }
    const std::string name = py::str(key);
    if (name == kIds) {
      // Identifiers are the world's to give; a matching "ids" array proves
      // that the other arrays were read from these bodies, in this order.
      const py::array_t<double> ids = toRealArray(value, kIds, n, 0);
      py::ssize_t row = 0;
      bool same = true;
      forEachItem<Body>(*world.bodies, [&](const Body& b) {
        same = same && ids.at(row++) == static_cast<double>(b.id);
      });
      if (!same) {
        throw py::value_error(
            "ids do not match the world's bodies: bodies were added, removed or merged since "
            "the state was read");
      }
      continue;
    }
    const BodyField* field = arrayField(name);
    if (field == nullptr) {
      throw py::type_error("unknown state array '" + name + "'; the arrays are " + knownNames());
    }
    writes.push_back({field, toRealArray(value, name.c_str(), n, columns(*field))});
  }

  for (const PendingWrite& w : writes) {
    const double* v = w.values.data();
    forEachItem<Body>(*world.bodies, [&](Body& b) {
      visitField(
          *w.field,
          [&](auto&& storage) {
            using T = std::remove_cvref_t<decltype(storage)>;
            if constexpr (std::is_same_v<T, Vector>) {
              storage = Vector::of(v[0], v[1], v[2]);
              v += 3;
            } else if constexpr (std::is_same_v<T, float[3]>) {
              for (int c = 0; c < 3; ++c) {
                storage[c] = narrowToFloat(*v++);
              }
            } else if constexpr (std::is_same_v<T, double>) {
              storage = *v++;
            }
          },
          b);
    });
  }
}

py::ssize_t stateArrayColumns(const char* name) {
  const BodyField* field = arrayField(name);
  return field != nullptr ? columns(*field) : 0;
}
