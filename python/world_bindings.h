#pragma once

#include <pybind11/pybind11.h>

namespace py = pybind11;

// The World class of the module: parameters, bodies, arrays, stepping,
// aggregate quantities, log lines and datafiles.
void bindWorld(py::module_& m);
