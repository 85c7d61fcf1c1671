#include "recording.h"

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "conversions.h"

namespace {

// Writes the current state into one frame. The bodies of the world are, in
// list order, the recorded bodies minus those merged away since (a step only
// removes bodies, and keeps the order of the rest), plus whatever a callback
// added. Each body is matched to the next recorded column with its
// identifier; a body that matches none is not recorded.
void writeFrame(const World& world, const std::vector<int32_t>& ids, double* frame) {
  std::size_t column = 0;
  forEachItem<Body>(*world.bodies, [&](const Body& b) {
    std::size_t c = column;
    while (c < ids.size() && ids[c] != b.id) {
      ++c;
    }
    if (c == ids.size()) {
      return;
    }
    double* out = frame + c * kRecordedFields;
    for (const Vector* v : {&b.position, &b.velocity, &b.acceleration}) {
      *out++ = v->x;
      *out++ = v->y;
      *out++ = v->z;
    }
    *out = b.mass;
    column = c + 1;
  });
}

py::object firstFrames(const py::array& a, py::ssize_t frames) {
  return a[py::slice(0, frames, 1)];
}

}  // namespace

Recording recordRun(PythonWorld& pw, py::handle self, int64_t n, int64_t every,
                    const py::object& callback, double maxBytes) {
  PythonWorld::checkRunArguments(n, every);
  const World& world = pw.world();
  std::vector<int32_t> ids;
  py::list names;
  forEachItem<Body>(*world.bodies, [&](const Body& b) {
    ids.push_back(b.id);
    names.append(fromUtf8(b.name));
  });
  // Frames at steps 0, every, 2 every, ... and n. Counted in doubles: n may
  // be as large as an int64 holds.
  const double frames = 1.0 + std::floor(static_cast<double>(n) / static_cast<double>(every)) +
                        (n % every != 0 ? 1.0 : 0.0);
  const double bytes =
      frames * (static_cast<double>(ids.size()) * kRecordedFields * 8.0 + 2.0 * 8.0);
  if (!(bytes <= maxBytes)) {
    throw py::value_error("recording " + std::to_string(static_cast<long long>(frames)) +
                          " frames of " + std::to_string(ids.size()) + " bodies needs " +
                          std::to_string(static_cast<long long>(bytes)) +
                          " bytes, more than max_bytes; record every k-th step or raise "
                          "max_bytes");
  }
  const auto f = static_cast<py::ssize_t>(frames);
  const auto b = static_cast<py::ssize_t>(ids.size());

  Recording r;
  r.names = names;
  r.ids = py::array_t<int32_t>(b);
  std::copy(ids.begin(), ids.end(), r.ids.mutable_data());
  r.steps = py::array_t<int64_t>(f);
  r.times = py::array_t<double>(f);
  r.states = py::array_t<double>({f, b, py::ssize_t{kRecordedFields}});
  int64_t* steps = r.steps.mutable_data();
  double* times = r.times.mutable_data();
  double* states = r.states.mutable_data();
  std::fill(states, states + f * b * kRecordedFields, std::numeric_limits<double>::quiet_NaN());

  // The hook runs without the interpreter lock; it writes only into the
  // arrays made above, which no Python code can reach before the run ends.
  py::ssize_t next = 0;
  const auto record = [&](int64_t done) {
    steps[next] = done;
    times[next] = world.elapsedTime;
    writeFrame(world, ids, states + next * b * kRecordedFields);
    ++next;
  };
  record(0);
  pw.run(self, n, every, callback, record);
  if (next < f) {
    // A callback stopped the run early.
    r.steps = firstFrames(r.steps, next);
    r.times = firstFrames(r.times, next);
    r.states = firstFrames(r.states, next);
  }
  return r;
}

void bindRecording(py::module_& m) {
  py::class_<Recording> cls(m, "Recording", R"(The states of a run, from World.record.

Frame k holds the state after steps[k] steps, at elapsed time times[k]; frame
0 is the state before the first step. Bodies are those of the world when the
run started, in list order (ids, names); a body merged away or removed has NaN
in every field from then on. states has shape (frames, bodies, 10) with the
fields of FIELDS; positions, velocities, accelerations and masses are views of
it.)");
  cls.def_readonly("steps", &Recording::steps, "Steps done at each frame, int64 (frames,).");
  cls.def_readonly("times", &Recording::times, "Elapsed time at each frame, float64 (frames,).");
  cls.def_readonly("ids", &Recording::ids, "Body identifiers, int32 (bodies,).");
  cls.def_readonly("names", &Recording::names, "Body names at the start of the run.");
  cls.def_readonly("states", &Recording::states, "All fields, float64 (frames, bodies, 10).");
  cls.attr("FIELDS") = py::make_tuple("x", "y", "z", "vx", "vy", "vz", "ax", "ay", "az", "mass");
  const auto fieldView = [&](const char* name, py::ssize_t first, py::ssize_t last,
                             const char* doc) {
    cls.def_property_readonly(
        name,
        [first, last](const Recording& r) -> py::object {
          const py::object fields = last - first == 1 ? py::object(py::int_(first))
                                                      : py::object(py::slice(first, last, 1));
          return r.states[py::make_tuple(py::ellipsis(), fields)];
        },
        doc);
  };
  fieldView("positions", 0, 3, "View of states: (frames, bodies, 3).");
  fieldView("velocities", 3, 6, "View of states: (frames, bodies, 3).");
  fieldView("accelerations", 6, 9, "View of states: (frames, bodies, 3).");
  fieldView("masses", 9, 10, "View of states: (frames, bodies).");
  cls.def("__len__", [](const Recording& r) { return r.steps.shape(0); });
  cls.def("__repr__", [](const Recording& r) {
    return "<orrenvale.Recording " + std::to_string(r.steps.shape(0)) + " frames of " +
           std::to_string(r.ids.shape(0)) + " bodies>";
  });
}
