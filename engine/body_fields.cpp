#include "body_fields.h"

#include <cmath>

const char* notFiniteProblem(double value) {
  return std::isfinite(value) ? nullptr
                              : "Not a finite number: the bodies' positions will become "
                                "undefined (not a number)";
}

namespace {

constexpr BodyField kBodyFields[] = {
    {.key = "Position",
     .label = "Position x, y, z",
     .title = "Position",
     .python = "position",
     .pythonArray = "positions",
     .member = &Body::position,
     .flags = kChangesMotion,
     .warning = notFiniteProblem},
    {.key = "Velocity",
     .label = "Velocity x, y, z",
     .title = "Velocity",
     .python = "velocity",
     .pythonArray = "velocities",
     .member = &Body::velocity,
     .flags = kChangesMotion,
     .warning = notFiniteProblem},
    // Not stored: every step and the stopped world's refresh compute it.
    {.label = "Acceleration x, y, z",
     .title = "Acceleration",
     .python = "acceleration",
     .pythonArray = "accelerations",
     .member = &Body::acceleration},
    {.key = "Mass",
     .label = "Mass",
     .title = "Mass",
     .python = "mass",
     .pythonArray = "masses",
     .member = &Body::mass,
     .flags = kChangesMotion,
     .warning = notFiniteProblem},
    {.key = "Radius",
     .label = "Radius",
     .title = "Radius",
     .python = "radius",
     .pythonArray = "radii",
     .member = &Body::radius,
     .flags = kChangesMotion},
    {.key = "Color",
     .label = "Colour",
     .title = "Colour",
     .python = "color",
     .pythonArray = "colors",
     .member = &Body::color},
    {.key = "Trace enable",
     .label = "Trace",
     .title = "Trace",
     .python = "trace_enable",
     .member = &Body::traceEnable},
    {.key = "Show vectors",
     .label = "Vectors",
     .title = "Vectors",
     .python = "show_vectors",
     .member = &Body::showVectors},
    {.key = "Body name", .label = "Name", .title = "Name", .python = "name", .member = &Body::name},
};

}  // namespace

std::span<const BodyField> bodyFields() {
  return kBodyFields;
}
