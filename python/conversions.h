#pragma once

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "engine/names.h"
#include "engine/vector.h"

namespace py = pybind11;

// Checked conversions of the Python values that setters and arrays receive.
// Each raises TypeError, ValueError or OverflowError with a message that names
// the field; none lets a bad value reach the engine's memory.

// Any real number (int, float, NumPy scalars). NaN and infinities pass: the
// engine has guarded behaviour for them.
double toDouble(py::handle value, const char* what);
// An integer within the range of a 32-bit field.
int32_t toInt32(py::handle value, const char* what);
// Whether the value is True or False (also NumPy's booleans).
bool isBool(py::handle value);
// True or False (also NumPy's booleans); nothing else.
bool toBool(py::handle value, const char* what);
// A str without NUL characters, as UTF-8. The engine cuts names longer than
// 254 bytes at a character boundary.
std::string toName(py::handle value, const char* what);
// Text of the engine (names, log lines) as str; bytes that are not UTF-8 are
// kept as surrogate escapes.
py::str fromUtf8(std::string_view bytes);

// A real-valued array (a NumPy array or nested sequences of integers or reals)
// of the given shape, as C-contiguous float64: integer and narrower real
// types are converted, anything else (complex, objects, strings, long double)
// is refused, and the shape must match exactly. cols 0 asks for a vector of
// rows elements.
py::array_t<double> toRealArray(py::handle value, const char* what, py::ssize_t rows,
                                py::ssize_t cols);

// Three real numbers, as a vector or a colour.
Vector toVector(py::handle value, const char* what);
std::array<float, 3> toColor(py::handle value, const char* what);

// Fresh read-only arrays of three components: a body's fields are changed by
// assigning to them, never through an array that was read.
py::array fromVector(const Vector& v);
py::array fromColor(const float (&color)[3]);
