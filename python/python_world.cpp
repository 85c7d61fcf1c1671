#include "python_world.h"

#include <chrono>

#include "conversions.h"
#include "document/plist_writer.h"

namespace {

// How long the interpreter waits at most for a Ctrl+C to be noticed while the
// world steps: short for a person, long against the cost of taking the lock.
constexpr auto kSignalCheckInterval = std::chrono::milliseconds(50);

// Marks the world as being stepped for as long as it lives.
class SteppingFlag {
 public:
  explicit SteppingFlag(bool& flag) : flag_(flag) { flag_ = true; }
  ~SteppingFlag() { flag_ = false; }
  SteppingFlag(const SteppingFlag&) = delete;
  SteppingFlag& operator=(const SteppingFlag&) = delete;

 private:
  bool& flag_;
};

}  // namespace

World& PythonWorld::world() {
  // The flag is written only with the interpreter lock held, and every caller
  // holds it: a thread that sees it set runs while another one steps.
  if (stepping_) {
    throw std::runtime_error("the world is being stepped in another thread");
  }
  return world_;
}

std::shared_ptr<PythonWorld> PythonWorld::load(const QString& path, DocumentSections sections) {
  auto loaded = std::make_shared<PythonWorld>();
  QString error;
  {
    // The new world is not visible to any other thread yet.
    py::gil_scoped_release release;
    DocumentReadResult read = readDocumentFile(path);
    if (read.dict) {
      LoadHooks hooks;
      hooks.loadViews = [&](const PlistValue& views) { loaded->views_ = views; };
      loadToWorldFromDict(loaded->world_, &*read.dict, sections, hooks);
    } else {
      error = read.error;
    }
  }
  if (!error.isEmpty()) {
    throw DatafileError(QStringLiteral("%1: %2").arg(path, error).toStdString());
  }
  return loaded;
}

void PythonWorld::save(const QString& path, DocumentSections sections) {
  const PlistDict dict = saveWorldToDict(world(), sections, views_ ? &*views_ : nullptr);
  QString error;
  if (!writePlistFile(path, PlistValue(dict), &error)) {
    throw DatafileError(
        QStringLiteral("%1: cannot be written (%2)").arg(path, error).toStdString());
  }
}

void PythonWorld::reset() {
  world().reset();
  views_.reset();
}

namespace {

// Lets Ctrl+C reach a single long step (adaptive stepping that refines for
// hours): the interpreter's signal check runs now and then within the step,
// and a KeyboardInterrupt cancels it, leaving the world as it was before it.
class SignalWatch : public StepMonitor {
 public:
  bool keepGoing(const StepProgress&) override {
    const auto now = std::chrono::steady_clock::now();
    if (now < next_) {
      return true;
    }
    next_ = now + kSignalCheckInterval;
    const py::gil_scoped_acquire hold;
    interrupted = PyErr_CheckSignals() != 0;
    return !interrupted;
  }
  bool interrupted = false;

 private:
  std::chrono::steady_clock::time_point next_ =
      std::chrono::steady_clock::now() + kSignalCheckInterval;
};

}  // namespace

int64_t PythonWorld::run(py::handle self, int64_t n, int64_t every, const py::object& callback,
                         const FrameHook& frame) {
  checkRunArguments(n, every);
  world();
  const bool calls = !callback.is_none();
  int64_t done = 0;
  while (done < n) {
    bool callNow = false;
    SignalWatch watch;
    {
      SteppingFlag flag(stepping_);
      py::gil_scoped_release release;
      const auto until = std::chrono::steady_clock::now() + kSignalCheckInterval;
      while (done < n) {
        if (!world_.step(&watch)) {
          break;
        }
        ++done;
        if (done % every == 0 || done == n) {
          if (frame) {
            frame(done);
          }
          if (calls) {
            callNow = true;
            break;
          }
        }
        if (std::chrono::steady_clock::now() >= until) {
          break;
        }
      }
    }
    if (watch.interrupted || PyErr_CheckSignals() != 0) {
      throw py::error_already_set();
    }
    if (callNow) {
      // The callback may change the world, or step it itself: no body pointer
      // is held across this call.
      // Only True stops: a callback that happens to return something else
      // (a body it added, a count) lets the run go on.
      const py::object result = callback(self, done);
      if (isBool(result) && PyObject_IsTrue(result.ptr()) == 1) {
        break;
      }
    }
  }
  return done;
}

void PythonWorld::checkRunArguments(int64_t n, int64_t every) {
  if (n < 0) {
    throw py::value_error("the number of steps must be 0 or more");
  }
  if (every < 1) {
    throw py::value_error("every must be 1 or more");
  }
}

QString pathArgument(py::handle path) {
  const py::bytes encoded = py::module_::import("os").attr("fsencode")(path);
  return QString::fromStdString(std::string(encoded));
}
