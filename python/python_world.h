#pragma once

#include <pybind11/pybind11.h>

#include <QString>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>

#include "document/plist_value.h"
#include "document/world_document.h"
#include "engine/world.h"

namespace py = pybind11;

// Raised as orrenvale.DatafileError (an OSError) with a message that names the
// file and the reason.
class DatafileError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A world as the Python module holds it: the engine's world, the views section
// of the datafile it was loaded from (written back by save, as the runner
// does), and whether a step(n) is running with the interpreter lock released.
class PythonWorld : public std::enable_shared_from_this<PythonWorld> {
 public:
  // The world, for code that holds the interpreter lock. Raises RuntimeError
  // while another thread steps it: nothing may touch the engine then.
  World& world();

  // Reads a datafile through the document code; the error names the file and
  // the reason in the words orrenvale-batch uses.
  static std::shared_ptr<PythonWorld> load(const QString& path, DocumentSections sections);
  // Writes the selected sections atomically.
  void save(const QString& path, DocumentSections sections);
  // The world's reset, which also forgets the views of a loaded datafile.
  void reset();

  // Called without the interpreter lock after each step that ends a stretch
  // of `every` steps, and after the last one, with the number of steps done.
  using FrameHook = std::function<void(int64_t done)>;

  // Steps n times with the interpreter lock released. After every `every`
  // steps and after the last one, frame (without the lock) and then callback
  // (with it, as callback(self, done)) are called; a callback that returns
  // True stops the run. At least every 50 ms the lock is taken back to
  // check for signals, so Ctrl+C raises KeyboardInterrupt between two steps.
  // Returns the number of steps taken.
  int64_t run(py::handle self, int64_t n, int64_t every, const py::object& callback,
              const FrameHook& frame = {});
  // Raises ValueError unless n >= 0 and every >= 1.
  static void checkRunArguments(int64_t n, int64_t every);

 private:
  World world_;
  std::optional<PlistValue> views_;
  bool stepping_ = false;
};

// Paths come as str, bytes or os.PathLike and are passed on as their file
// system bytes, read as UTF-8 as orrenvale-batch reads its arguments.
QString pathArgument(py::handle path);
