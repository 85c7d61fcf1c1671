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
     .warning = notFiniteProblem,
     .help = "Centre of the sphere."},
    {.key = "Velocity",
     .label = "Velocity x, y, z",
     .title = "Velocity",
     .python = "velocity",
     .pythonArray = "velocities",
     .member = &Body::velocity,
     .flags = kChangesMotion,
     .warning = notFiniteProblem,
     .help = "Velocity."},
    // Not stored: every step and the stopped world's refresh compute it.
    {.label = "Acceleration x, y, z",
     .title = "Acceleration",
     .python = "acceleration",
     .pythonArray = "accelerations",
     .member = &Body::acceleration,
     .help = "Acceleration at the start of the last step (or of the last compute_accelerations)."},
    {.key = "Mass",
     .label = "Mass",
     .title = "Mass",
     .python = "mass",
     .pythonArray = "masses",
     .member = &Body::mass,
     .flags = kChangesMotion,
     .warning = notFiniteProblem,
     .help = "Mass; 1e-12 or less in magnitude gives no acceleration."},
    {.key = "Radius",
     .label = "Radius",
     .title = "Radius",
     .python = "radius",
     .pythonArray = "radii",
     .member = &Body::radius,
     .flags = kChangesMotion,
     .help = "Radius of the sphere, for collisions and drawing."},
    {.key = "Color",
     .label = "Colour",
     .title = "Colour",
     .python = "color",
     .pythonArray = "colors",
     .member = &Body::color,
     .help = "Red, green and blue, 0 to 1, kept in single precision."},
    {.key = "Trace enable",
     .label = "Trace",
     .title = "Trace",
     .python = "trace_enable",
     .member = &Body::traceEnable,
     .help = "Whether the body leaves trace points."},
    {.key = "Show vectors",
     .label = "Vectors",
     .title = "Vectors",
     .python = "show_vectors",
     .member = &Body::showVectors,
     .help = "Whether views draw the body's velocity and acceleration."},
    {.key = "Body name",
     .label = "Name",
     .title = "Name",
     .python = "name",
     .member = &Body::name,
     .help = "The name (at most 254 bytes of UTF-8; longer names are cut at a character)."},
};

}  // namespace

std::span<const BodyField> bodyFields() {
  return kBodyFields;
}
