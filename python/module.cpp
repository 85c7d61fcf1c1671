// The extension module behind the Python package orrenvale.
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <string>
#include <vector>

#include "batch/batch_runner.h"
#include "body_handle.h"
#include "python_world.h"
#include "recording.h"
#include "world_bindings.h"

#ifndef ORRENVALE_VERSION
#define ORRENVALE_VERSION "unknown"
#endif

PYBIND11_MODULE(_orrenvale, m) {
  m.doc() = "The Orrenvale engine and datafile code; use the package orrenvale.";
  m.attr("__version__") = ORRENVALE_VERSION;
  py::register_exception<DatafileError>(m, "DatafileError", PyExc_OSError);
  m.attr("DatafileError").attr("__doc__") =
      "A datafile that cannot be read or written; the message names the file and the reason.";
  bindBody(m);
  bindRecording(m);
  bindWorld(m);
  m.def(
      "run_batch",
      [](const std::vector<std::string>& args) {
        py::gil_scoped_release release;
        return runBatch(args);
      },
      py::arg("args"),
      "Runs orrenvale-batch on its arguments (bytes, after the program name); returns the exit "
      "status.");
}
