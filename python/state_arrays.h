#pragma once

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include "engine/world.h"

namespace py = pybind11;

// The whole state of a world as NumPy arrays, one row per body in list order.
// Reading gives fresh arrays; writing copies the values into the bodies.

// The names of the arrays, as state() gives them and set_state takes them:
// "ids" (int32, read-only), "positions", "velocities", "accelerations"
// (float64, (N, 3)), "masses", "radii" (float64, (N,)), "colors" (float32,
// (N, 3): the engine keeps colours in single precision).
py::array readStateArray(const World& world, const char* name);
py::dict readState(const World& world);

// Writes the given arrays ({name: array}). Every array is checked (name, type,
// shape, and "ids", when given, against the world's identifiers in order)
// before any body changes, so a refused call leaves the world as it was.
void writeState(World& world, const py::dict& arrays);
