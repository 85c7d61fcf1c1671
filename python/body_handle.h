#pragma once

#include <pybind11/pybind11.h>

#include <cstdint>
#include <memory>

#include "python_world.h"

namespace py = pybind11;

// What Python holds for a body: its world and its identifier. A step may
// replace every Body object (adaptive stepping) or delete one (a merge), so
// the body is looked up again on every access, never kept.
class BodyHandle {
 public:
  BodyHandle(std::shared_ptr<PythonWorld> world, int32_t id) : world_(std::move(world)), id_(id) {}

  // The first body of the world with this identifier; raises LookupError when
  // there is none any more.
  Body& body() const;
  bool exists() const;
  int32_t id() const { return id_; }
  const std::shared_ptr<PythonWorld>& world() const { return world_; }

 private:
  std::shared_ptr<PythonWorld> world_;
  int32_t id_;
};

// Creates a body from keyword arguments named as the Body's attributes. Every
// value is converted before the body is made, so a bad value or an unknown
// name creates nothing.
Body& createBody(World& world, const py::kwargs& fields);

void bindBody(py::module_& m);
