#pragma once

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <cstdint>

#include "python_world.h"

namespace py = pybind11;

// The states of a run, frame by frame: the bodies present when the run
// started, in their list order, with NaN rows for a body once it is gone.
struct Recording {
  py::array_t<int64_t> steps;  // (F,) steps done at each frame
  py::array_t<double> times;   // (F,) elapsed time at each frame
  py::array_t<int32_t> ids;    // (B,)
  py::list names;              // B names
  py::array_t<double> states;  // (F, B, kRecordedFields)
};

// x, y, z, vx, vy, vz, ax, ay, az, mass.
inline constexpr int kRecordedFields = 10;

// Steps the world n times, as PythonWorld::run does, and records a frame at
// the start and after every `every` steps and the last one. The memory is
// allocated before the first step; a run that would need more than maxBytes
// raises ValueError and takes no step.
Recording recordRun(PythonWorld& world, py::handle self, int64_t n, int64_t every,
                    const py::object& callback, double maxBytes);

void bindRecording(py::module_& m);
