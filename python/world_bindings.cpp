#include "world_bindings.h"

#include <pybind11/stl.h>

#include <string>

#include "body_handle.h"
#include "conversions.h"
#include "document/log_line.h"
#include "document/world_document.h"
#include "engine/body_fields.h"
#include "engine/world_fields.h"
#include "field_properties.h"
#include "member_property.h"
#include "recording.h"
#include "state_arrays.h"

namespace {

using WorldClass = py::class_<PythonWorld, std::shared_ptr<PythonWorld>>;

// The World's array of one body field, read and written whole. The names are
// the body table's literals, which live as long as the module.
void arrayProperty(WorldClass& cls, const char* name, FieldType type) {
  const char* doc = type == FieldType::Vector ? "float64 (N, 3), read and written whole."
                    : type == FieldType::Color
                        ? "float32 (N, 3), read and written whole (written values are rounded "
                          "to single precision)."
                        : "float64 (N,), read and written whole.";
  cls.def_property(
      name, [name](PythonWorld& w) { return readStateArray(w.world(), name); },
      [name](PythonWorld& w, const py::object& value) {
        py::dict arrays;
        arrays[name] = value;
        writeState(w.world(), arrays);
      },
      doc);
}

DocumentSections sections(bool bodies, bool views, bool parameters) {
  return DocumentSections{bodies, views, parameters};
}

// The identifier of an int or a Body of this world.
int32_t bodyId(PythonWorld& w, const py::object& body) {
  if (py::isinstance<BodyHandle>(body)) {
    const auto& handle = body.cast<const BodyHandle&>();
    if (handle.world().get() != &w) {
      throw py::value_error("the body belongs to another world");
    }
    return handle.id();
  }
  return toInt32(body, "body identifier");
}

BodyHandle handleOf(PythonWorld& w, const Body& b) {
  return BodyHandle(w.shared_from_this(), b.id);
}

// The handle of a body that a lookup found; KeyError with the message when
// it found none.
BodyHandle foundBody(PythonWorld& w, const Body* b, const std::string& missing) {
  if (b == nullptr) {
    throw py::key_error(missing);
  }
  return handleOf(w, *b);
}

py::list bodyHandles(PythonWorld& w) {
  py::list bodies;
  forEachItem<Body>(*w.world().bodies, [&](const Body& b) { bodies.append(handleOf(w, b)); });
  return bodies;
}

}  // namespace

void bindWorld(py::module_& m) {
  WorldClass cls(m, "World", R"(A simulated world: parameters, bodies, elapsed time.

World() has the reset values (no bodies, time step 0.009999999776482582, G
6.672590258105515e-11, merging collisions, "Default world"). World.load reads a
datafile. step(n) advances it with the engine that the application and
orrenvale-batch use, to the same bits.)");
  cls.def(py::init([] { return std::make_shared<PythonWorld>(); }));

  cls.def_static(
      "load",
      [](const py::object& path, bool bodies, bool views, bool parameters) {
        return PythonWorld::load(pathArgument(path), sections(bodies, views, parameters));
      },
      py::arg("path"), py::arg("bodies") = true, py::arg("views") = true,
      py::arg("parameters") = true,
      R"(Reads a datafile (.ovd) into a new World.

Only the selected sections are read; the others keep their reset values. The
views are kept so that save writes them back. Raises DatafileError, whose
message names the file and the reason, when the file cannot be read.)");
  cls.def(
      "save",
      [](PythonWorld& w, const py::object& path, bool bodies, bool views, bool parameters) {
        w.save(pathArgument(path), sections(bodies, views, parameters));
      },
      py::arg("path"), py::arg("bodies") = true, py::arg("views") = true,
      py::arg("parameters") = true,
      R"(Writes the selected sections as a datafile, atomically: the file is
replaced whole or not at all. Raises DatafileError when it cannot be written.)");
  cls.def("reset", &PythonWorld::reset,
          "Removes every body and trace point and gives every parameter its reset value.");

  const auto engineWorld = [](PythonWorld& w) -> World& { return w.world(); };
  bindFieldProperties(cls, worldFields(), engineWorld);
  memberProperty(cls, "elapsed_time", engineWorld, &World::elapsedTime, kAsIs, toDouble,
                 "Simulated time; every step adds time_step.");

  cls.def("__len__", [](PythonWorld& w) { return w.world().bodies->count(); });
  cls.def("__iter__", [](PythonWorld& w) { return py::iter(bodyHandles(w)); });
  cls.def("__contains__", [](PythonWorld& w, const py::object& body) {
    return w.world().findBodyById(bodyId(w, body)) != nullptr;
  });
  cls.def_property_readonly("bodies", &bodyHandles, "The bodies in list order.");
  cls.def(
      "body",
      [](PythonWorld& w, const py::object& id) {
        return foundBody(w, w.world().findBodyById(toInt32(id, "id")),
                         "no body with identifier " + std::string(py::str(id)));
      },
      py::arg("id"), "The body with this identifier; KeyError when there is none.");
  cls.def(
      "body_named",
      [](PythonWorld& w, const py::object& name) {
        return foundBody(w, w.world().findBodyByName(toName(name, "name")),
                         "no body named " + std::string(py::repr(name)));
      },
      py::arg("name"), "The first body in list order with this name; KeyError when there is none.");
  cls.def(
      "add_body",
      [](PythonWorld& w, const py::kwargs& fields) {
        return handleOf(w, createBody(w.world(), fields));
      },
      R"(Adds a body and returns it.

Every field is an optional keyword argument named as the Body's attribute:
name ("Body k"), position, velocity, acceleration ((0, 0, 0)), mass (1),
radius (1), color ((0.5, 0.5, 0.5)), trace_enable (False), show_vectors
(True). The world gives it the next identifier. A bad value raises before
anything is added.)");
  cls.def(
      "remove_body",
      [](PythonWorld& w, const py::object& body) {
        const int32_t id = bodyId(w, body);
        if (w.world().findBodyById(id) == nullptr) {
          throw py::key_error("no body with identifier " + std::to_string(id));
        }
        w.world().deleteBodyById(id);
      },
      py::arg("body"), "Removes a body, given as a Body or an identifier; KeyError when absent.");

  for (const BodyField& field : bodyFields()) {
    if (!field.pythonArray.empty()) {
      arrayProperty(cls, field.pythonArray.data(), field.type());
    }
  }
  cls.def_property_readonly(
      "ids", [](PythonWorld& w) { return readStateArray(w.world(), "ids"); },
      "int32 (N,): the identifiers in list order.");
  cls.def(
      "state", [](PythonWorld& w) { return readState(w.world()); },
      R"(All arrays in one dict: ids and the array of each body field
(positions, velocities, accelerations, masses, radii, colors). Fresh copies: changing them changes nothing until they
are written back with set_state.)");
  cls.def(
      "set_state", [](PythonWorld& w, const py::kwargs& arrays) { writeState(w.world(), arrays); },
      R"(Writes any of the arrays of state() (set_state(**state) writes them all).

Each array must have one row per body, in list order: (N, 3) or (N,), of
integers or reals (converted to float64). When ids is given it must equal the
world's identifiers. Everything is checked before anything is written.)");

  cls.def(
      "step",
      [](const py::object& self, int64_t n, const py::object& callback, int64_t every) {
        return self.cast<PythonWorld&>().run(self, n, every, callback);
      },
      py::arg("n") = 1, py::arg("callback") = py::none(), py::arg("every") = 1,
      R"(Takes n steps and returns how many were taken.

The interpreter lock is released while the world steps. callback(world,
steps_done) is called after every `every` steps and after the last one. It
may change the world; returning True (a bool, NumPy's too) stops the run, and
other results are ignored. Ctrl+C raises KeyboardInterrupt between two steps.)");
  cls.def(
      "record",
      [](const py::object& self, int64_t n, int64_t every, const py::object& callback,
         double maxBytes) {
        return recordRun(self.cast<PythonWorld&>(), self, n, every, callback, maxBytes);
      },
      py::arg("n"), py::arg("every") = 1, py::arg("callback") = py::none(),
      py::arg("max_bytes") = double(1 << 30),
      R"(Takes n steps as step() does and returns a Recording of the states.

A frame is kept at the start, after every `every` steps and after the last
one. Memory is bounded and taken before the first step: frames x bodies x 80
bytes plus 16 bytes per frame, where frames = 1 + ceil(n / every); when that
is more than max_bytes (default 1 GiB) ValueError is raised and no step is
taken.)");

  cls.def(
      "energy", [](PythonWorld& w) { return w.world().energy(); },
      "Kinetic minus potential energy of all bodies.");
  cls.def(
      "momentum", [](PythonWorld& w) { return fromVector(w.world().momentum()); },
      "Total momentum; components below 1e-12 in magnitude are 0.");
  cls.def(
      "center_of_mass", [](PythonWorld& w) { return fromVector(w.world().centerOfMass()); },
      "Centre of mass (the mass-weighted sum when the total mass is 1e-12 or less).");
  cls.def(
      "angular_momentum", [](PythonWorld& w) { return fromVector(w.world().angularMomentum()); },
      "Orbital angular momentum about the centre of mass, in its moving frame.");
  cls.def(
      "compute_accelerations", [](PythonWorld& w) { w.world().computeAccelerations(); },
      "Sets every body's acceleration from the current positions, as the application "
      "does while stopped.");
  cls.def(
      "log_line",
      [](PythonWorld& w, bool exact) {
        std::string line;
        appendLogLine(line, w.world(), exact ? LogReals::Exact : LogReals::Fixed);
        return fromUtf8(line);
      },
      py::arg("exact") = false,
      R"(The text log's line of body states, with its newline: elapsed time,
then name, position, velocity and acceleration of every body, tab-separated,
with "%f" reals (exact=True: "%.17g", which reads back to the same double).)");
  cls.def("__repr__", [](PythonWorld& w) {
    const World& world = w.world();
    return "<orrenvale.World " + std::string(py::repr(fromUtf8(world.name))) + ", " +
           std::to_string(world.bodies->count()) + " bodies, elapsed time " +
           std::string(py::repr(py::float_(world.elapsedTime))) + ">";
  });
}
