#pragma once

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include "engine/world.h"

namespace py = pybind11;

// The whole state of a world as NumPy arrays, one row per body in list order.
// Reading gives fresh arrays; writing copies the values into the bodies.

// The names of the arrays, as state() gives them and set_state takes them:
// "ids" (int32, read-only), and the array of each body field that has one
// (the body table's Python array names): a vector as float64 (N, 3), a
// number as float64 (N,), a colour as float32 (N, 3).
py::array readStateArray(const World& world, const char* name);
py::dict readState(const World& world);

// Writes the given arrays ({name: array}). Every array is checked (name, type,
// shape, and "ids", when given, against the world's identifiers in order)
// before any body changes, so a refused call leaves the world as it was.
void writeState(World& world, const py::dict& arrays);
// 3 for the arrays of vectors and colours, 0 for those of numbers.
py::ssize_t stateArrayColumns(const char* name);
