#include "world_fields.h"

#include <cmath>

#include "body_fields.h"

float boundedWorldSpeed(float milliseconds) {
  if (static_cast<double>(milliseconds) > 0.01) {
    return milliseconds;
  }
  if (milliseconds == 0.0f) {
    return 0.0f;
  }
  return 0.01f;
}

namespace {

constexpr std::string_view kIntegratorNames[] = {"RK4", "Leapfrog", "Wisdom-Holman", "Gauss-Radau"};
constexpr std::string_view kGravityNames[] = {"Exact", "Tree"};

template <typename E, E WorldValues::*member>
constexpr ChoiceMember<World> choice(std::span<const std::string_view> names) {
  return {[](const World& w) { return static_cast<int32_t>(w.*member); },
          [](World& w, int32_t index) { w.*member = static_cast<E>(index); }, names};
}

const char* timeStepProblem(double dt) {
  if (dt == 0.0) {
    return "A time step of 0 does not advance the simulation";
  }
  if (dt < 0.0) {
    return "A negative time step runs the simulation backwards in time";
  }
  return notFiniteProblem(dt);
}

const char* positiveAccuracy(double eps) {
  return eps > 0.0 && std::isfinite(eps) ? nullptr : "The accuracy must be a finite number above 0";
}

const char* correctorOrder(double k) {
  return k == 0.0 || k == 3.0 || k == 5.0 || k == 7.0 || k == 11.0
             ? nullptr
             : "Symplectic correctors are of order 3, 5, 7 or 11, or 0 for none";
}

const char* nonNegativeLength(double x) {
  return x >= 0.0 && std::isfinite(x) ? nullptr : "The value must be a finite number, 0 or more";
}

const char* adaptiveUnused(const World& w) {
  return w.integrator == Integrator::RK4
             ? nullptr
             : "Adaptive time stepping refines the RK4 integrator's steps; the other integrators "
               "choose their own accuracy";
}

const char* accuracyUnused(const World& w) {
  return w.integrator == Integrator::GaussRadau ? nullptr
                                                : "The accuracy sets the Gauss-Radau integrator's "
                                                  "substeps";
}

const char* correctorsUnused(const World& w) {
  return w.integrator == Integrator::WisdomHolman ? nullptr
                                                  : "Symplectic correctors belong to the "
                                                    "Wisdom-Holman integrator";
}

const char* openingAngleUnused(const World& w) {
  return w.gravity == Gravity::Tree ? nullptr : "The opening angle belongs to tree gravity";
}

double boundedSpeed(double milliseconds) {
  return static_cast<double>(boundedWorldSpeed(static_cast<float>(milliseconds)));
}

constexpr WorldField kWorldFields[] = {
    {.key = "Time step",
     .label = "Time step",
     .title = "Time Step",
     .python = "time_step",
     .member = &World::timeStep,
     .flags = kChangesMotion,
     .warning = timeStepProblem,
     .help = "Integration time step; every step adds it to elapsed_time."},
    {.key = "Adaptive time stepping",
     .label = "Adaptive time step",
     .title = "Adaptive Time Stepping",
     .python = "adaptive",
     .member = &World::adaptive,
     .flags = kChangesMotion,
     .help = "Adaptive time stepping of the RK4 integrator: each step is checked against finer "
             "substeps by the total energy.",
     .unusedBecause = adaptiveUnused},
    {.key = "Gravitational constant",
     .label = "Gravitational constant",
     .title = "Gravitational Constant",
     .python = "gravitational_constant",
     .member = &World::gravitationalConstant,
     .flags = kChangesMotion,
     .warning = notFiniteProblem,
     .help = "G in the force law."},
    // The collision model is the pair of this flag and the restitution.
    {.key = "Collision model",
     .label = "Collision model",
     .title = "Collision Model",
     .python = "merge",
     .member = &World::merge,
     .flags = kChangesMotion,
     .help = "True: touching bodies merge; False: they rebound with restitution."},
    {.key = "Coefficient of restitution",
     .label = "Restitution e",
     .title = "Restitution",
     .python = "restitution",
     .member = &World::restitution,
     .flags = kChangesMotion,
     .warning = notFiniteProblem,
     .help = "Coefficient of restitution of collisions that do not merge."},
    {.key = "Milliseconds per update",
     .label = "Milliseconds per update",
     .title = "Milliseconds per Update",
     .python = "milliseconds_per_update",
     .member = &World::millisecondsPerUpdate,
     .bound = boundedSpeed,
     .help = "The application's pace, single precision, with the application's bound: 0, or more "
             "than 0.01 (anything else becomes 0.01)."},
    {.key = "World name",
     .label = "World name",
     .title = "Name",
     .python = "name",
     .member = &World::name,
     .help = "The world's name (at most 254 bytes of UTF-8; longer names are cut at a character)."},
    {.key = "Trace history points",
     .label = "Trace history points",
     .title = "Trace History Points",
     .python = "trace_history_points",
     .member = &World::traceHistoryPoints,
     .help = "Bound on the number of trace points kept (a negative bound keeps none)."},
    {.key = "Integrator",
     .label = "Integrator",
     .title = "Integrator",
     .python = "integrator",
     .member = choice<Integrator, &World::integrator>(kIntegratorNames),
     .flags = kChangesMotion | kStoredWhenUsed,
     .help = "How the bodies move from one step to the next: \"RK4\", \"Leapfrog\", "
             "\"Wisdom-Holman\" or \"Gauss-Radau\"."},
    {.key = "Integrator accuracy",
     .label = "Accuracy",
     .title = "Integrator Accuracy",
     .python = "integrator_accuracy",
     .member = &World::integratorAccuracy,
     .flags = kChangesMotion | kStoredWhenUsed,
     .refusal = positiveAccuracy,
     .help = "Tolerance of the Gauss-Radau integrator's adaptive substeps (above 0).",
     .unusedBecause = accuracyUnused},
    {.key = "Symplectic correctors",
     .label = "Correctors",
     .title = "Symplectic Correctors",
     .python = "symplectic_correctors",
     .member = &World::symplecticCorrectors,
     .flags = kChangesMotion | kStoredWhenUsed,
     .refusal = correctorOrder,
     .help =
         "Order of the Wisdom-Holman map's symplectic correctors: 3, 5, 7 or 11, or 0 for none.",
     .unusedBecause = correctorsUnused},
    {.key = "Gravity",
     .label = "Gravity",
     .title = "Gravity",
     .python = "gravity",
     .member = choice<Gravity, &World::gravity>(kGravityNames),
     .flags = kChangesMotion | kStoredWhenUsed,
     .help = "How forces are summed: \"Exact\" (every pair) or \"Tree\" (Barnes-Hut, distant "
             "groups as one)."},
    {.key = "Opening angle",
     .label = "Opening angle",
     .title = "Opening Angle",
     .python = "opening_angle",
     .member = &World::openingAngle,
     .flags = kChangesMotion | kStoredWhenUsed,
     .refusal = nonNegativeLength,
     .help = "Opening angle of the tree (0 or more; 0 sums every pair).",
     .unusedBecause = openingAngleUnused},
    {.key = "Softening length",
     .label = "Softening",
     .title = "Softening Length",
     .python = "softening",
     .member = &World::softeningLength,
     .flags = kChangesMotion | kStoredWhenUsed,
     .refusal = nonNegativeLength,
     .help = "Plummer softening length of the force and the potential (0 or more; 0 keeps "
             "Newton's law)."},
};

}  // namespace

std::span<const WorldField> worldFields() {
  return kWorldFields;
}

std::span<const std::string_view> integratorNames() {
  return kIntegratorNames;
}

std::span<const std::string_view> gravityNames() {
  return kGravityNames;
}
