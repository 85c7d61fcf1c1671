#include "state_arrays.h"

#include <cstring>
#include <string>
#include <vector>

#include "conversions.h"
#include "document/plist_value.h"

namespace {

struct VectorArray {
  const char* name;
  Vector Body::*member;
};
const VectorArray kVectorArrays[] = {
    {"positions", &Body::position},
    {"velocities", &Body::velocity},
    {"accelerations", &Body::acceleration},
};

struct ScalarArray {
  const char* name;
  double Body::*member;
};
const ScalarArray kScalarArrays[] = {
    {"masses", &Body::mass},
    {"radii", &Body::radius},
};

constexpr const char* kIds = "ids";
constexpr const char* kColors = "colors";

py::ssize_t bodyCount(const World& world) {
  return world.bodies->count();
}

template <typename Table>
const auto* findArray(const Table& table, std::string_view name) {
  for (const auto& entry : table) {
    if (name == entry.name) {
      return &entry;
    }
  }
  return static_cast<decltype(&table[0])>(nullptr);
}

std::string knownNames() {
  std::string names = std::string(kIds) + ", ";
  for (const auto& a : kVectorArrays) {
    names += std::string(a.name) + ", ";
  }
  for (const auto& a : kScalarArrays) {
    names += std::string(a.name) + ", ";
  }
  return names + kColors;
}

// One array of a set_state call, checked and converted, waiting to be written.
struct PendingWrite {
  const VectorArray* vectors = nullptr;
  const ScalarArray* scalars = nullptr;
  bool colors = false;
  py::array_t<double> values;
};

}  // namespace

py::array readStateArray(const World& world, const char* name) {
  const py::ssize_t n = bodyCount(world);
  py::ssize_t row = 0;
  if (std::strcmp(name, kIds) == 0) {
    py::array_t<int32_t> a(n);
    auto m = a.mutable_unchecked<1>();
    forEachItem<Body>(*world.bodies, [&](const Body& b) { m(row++) = b.id; });
    return a;
  }
  if (std::strcmp(name, kColors) == 0) {
    py::array_t<float> a({n, py::ssize_t{3}});
    auto m = a.mutable_unchecked<2>();
    forEachItem<Body>(*world.bodies, [&](const Body& b) {
      for (py::ssize_t c = 0; c < 3; ++c) {
        m(row, c) = b.color[c];
      }
      ++row;
    });
    return a;
  }
  if (const VectorArray* entry = findArray(kVectorArrays, name)) {
    py::array_t<double> a({n, py::ssize_t{3}});
    auto m = a.mutable_unchecked<2>();
    forEachItem<Body>(*world.bodies, [&](const Body& b) {
      const Vector& v = b.*entry->member;
      m(row, 0) = v.x;
      m(row, 1) = v.y;
      m(row, 2) = v.z;
      ++row;
    });
    return a;
  }
  const ScalarArray* entry = findArray(kScalarArrays, name);
  if (entry == nullptr) {
    throw py::value_error(std::string("unknown state array '") + name + "'");
  }
  py::array_t<double> a(n);
  auto m = a.mutable_unchecked<1>();
  forEachItem<Body>(*world.bodies, [&](const Body& b) { m(row++) = b.*entry->member; });
  return a;
}

py::dict readState(const World& world) {
  py::dict state;
  state[kIds] = readStateArray(world, kIds);
  for (const auto& a : kVectorArrays) {
    state[a.name] = readStateArray(world, a.name);
  }
  for (const auto& a : kScalarArrays) {
    state[a.name] = readStateArray(world, a.name);
  }
  state[kColors] = readStateArray(world, kColors);
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
    PendingWrite w;
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
    if (name == kColors) {
      w.colors = true;
      w.values = toRealArray(value, kColors, n, 3);
    } else if ((w.vectors = findArray(kVectorArrays, name)) != nullptr) {
      w.values = toRealArray(value, w.vectors->name, n, 3);
    } else if ((w.scalars = findArray(kScalarArrays, name)) != nullptr) {
      w.values = toRealArray(value, w.scalars->name, n, 0);
    } else {
      throw py::type_error("unknown state array '" + name + "'; the arrays are " + knownNames());
    }
    writes.push_back(std::move(w));
  }

  for (const PendingWrite& w : writes) {
    const double* v = w.values.data();
    forEachItem<Body>(*world.bodies, [&](Body& b) {
      if (w.vectors != nullptr) {
        b.*w.vectors->member = Vector::of(v[0], v[1], v[2]);
        v += 3;
      } else if (w.scalars != nullptr) {
        b.*w.scalars->member = *v++;
      } else {
        for (int c = 0; c < 3; ++c) {
          b.color[c] = narrowToFloat(*v++);
        }
      }
    });
  }
}
