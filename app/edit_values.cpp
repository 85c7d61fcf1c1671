#include "edit_values.h"

#include <QCoreApplication>
#include <algorithm>
#include <cstring>
#include <functional>
#include <vector>

#include "engine/world.h"

namespace {

QString tr(const char* text) {
  return QCoreApplication::translate("EditValues", text);
}

// Bit for bit, as an exact undo needs.
bool same(double a, double b) {
  return sameBits(a, b);
}
bool same(const Vector& a, const Vector& b) {
  return sameBits(a, b);
}
bool same(float a, float b) {
  return std::memcmp(&a, &b, sizeof a) == 0;
}
bool same(bool a, bool b) {
  return a == b;
}
bool same(int32_t a, int32_t b) {
  return a == b;
}
template <std::size_t N>
bool same(const std::array<float, N>& a, const std::array<float, N>& b) {
  return std::memcmp(a.data(), b.data(), sizeof a) == 0;
}
bool same(const std::array<char, kNameSize>& a, const std::array<char, kNameSize>& b) {
  return std::string_view(a.data()) == std::string_view(b.data());
}

// One editable field: its bit, its name in titles, and how the state
// compares and goes back into the model.
template <typename State, typename Model>
struct Slot {
  unsigned field;
  const char* title;
  std::function<bool(const State&, const State&)> same;
  std::function<void(const State&, Model&)> apply;
};

// A field that the state and the model hold as the same type.
template <typename State, typename Model, typename T>
Slot<State, Model> member(unsigned field, const char* title, T State::*s, T Model::*m) {
  return {field, title, [s](const State& a, const State& b) { return same(a.*s, b.*s); },
          [s, m](const State& state, Model& model) { model.*m = state.*s; }};
}

// A field the caller puts back itself (a body's name, which has to pass
// through the rename that keeps the Body menu in step).
template <typename State, typename Model, typename T>
Slot<State, Model> compared(unsigned field, const char* title, T State::*s) {
  return {field, title, [s](const State& a, const State& b) { return same(a.*s, b.*s); },
          [](const State&, Model&) {}};
}

const std::vector<Slot<BodyState, Body>>& bodySlots() {
  using State = BodyState;
  static const std::vector<Slot<State, Body>> table = {
      member(kBodyPosition, "Position", &State::position, &Body::position),
      member(kBodyVelocity, "Velocity", &State::velocity, &Body::velocity),
      member(kBodyAcceleration, "Acceleration", &State::acceleration, &Body::acceleration),
      member(kBodyMass, "Mass", &State::mass, &Body::mass),
      member(kBodyRadius, "Radius", &State::radius, &Body::radius),
      {kBodyColor, "Colour", [](const State& a, const State& b) { return same(a.color, b.color); },
       [](const State& s, Body& b) { std::copy(s.color.begin(), s.color.end(), b.color); }},
      member(kBodyTrace, "Trace", &State::traceEnable, &Body::traceEnable),
      member(kBodyVectors, "Vectors", &State::showVectors, &Body::showVectors),
      compared<State, Body>(kBodyName, "Name", &State::name),
  };
  return table;
}

const std::vector<Slot<WorldParameters, World>>& worldSlots() {
  using Params = WorldParameters;
  static const std::vector<Slot<Params, World>> table = {
      {kWorldName, "Name", [](const Params& a, const Params& b) { return same(a.name, b.name); },
       [](const Params& p, World& w) { w.setName(p.name.data()); }},
      member(kWorldTimeStep, "Time Step", &Params::timeStep, &World::timeStep),
      member(kWorldGravitationalConstant, "Gravitational Constant", &Params::gravitationalConstant,
             &World::gravitationalConstant),
      member(kWorldRestitution, "Restitution", &Params::restitution, &World::restitution),
      member(kWorldMerge, "Collision Model", &Params::merge, &World::merge),
      member(kWorldAdaptive, "Adaptive Time Stepping", &Params::adaptive, &World::adaptive),
      // Edits are recorded in design mode only, where the clock never runs:
      // the speed needs no re-arming, and the value kept is the bounded one.
      member(kWorldSpeed, "Milliseconds per Update", &Params::millisecondsPerUpdate,
             &World::millisecondsPerUpdate),
      member(kWorldTraceHistory, "Trace History Points", &Params::traceHistoryPoints,
             &World::traceHistoryPoints),
  };
  return table;
}

template <typename State, typename Model>
unsigned changed(const std::vector<Slot<State, Model>>& table, const State& a, const State& b) {
  unsigned fields = 0;
  for (const Slot<State, Model>& slot : table) {
    fields |= slot.same(a, b) ? 0u : slot.field;
  }
  return fields;
}

template <typename State, typename Model>
void apply(const std::vector<Slot<State, Model>>& table, const State& state, unsigned fields,
           Model& model) {
  for (const Slot<State, Model>& slot : table) {
    if (fields & slot.field) {
      slot.apply(state, model);
    }
  }
}

// The title of exactly one field; empty for several or none.
template <typename State, typename Model>
QString title(const std::vector<Slot<State, Model>>& table, unsigned fields) {
  for (const Slot<State, Model>& slot : table) {
    if (fields == slot.field) {
      return tr(slot.title);
    }
  }
  return {};
}

}  // namespace

BodyState BodyState::of(const Body& body) {
  BodyState s;
  s.id = body.id;
  s.position = body.position;
  s.velocity = body.velocity;
  s.acceleration = body.acceleration;
  s.radius = body.radius;
  s.mass = body.mass;
  std::copy(std::begin(body.name), std::end(body.name), s.name.begin());
  std::copy(std::begin(body.color), std::end(body.color), s.color.begin());
  s.traceEnable = body.traceEnable;
  s.showVectors = body.showVectors;
  return s;
}

unsigned changedBodyFields(const BodyState& a, const BodyState& b) {
  return changed(bodySlots(), a, b);
}

void applyBodyFields(const BodyState& s, unsigned fields, Body& body) {
  apply(bodySlots(), s, fields, body);
}

QString bodyFieldTitle(unsigned fields) {
  return title(bodySlots(), fields);
}

WorldParameters WorldParameters::of(const World& world) {
  WorldParameters p;
  std::copy(std::begin(world.name), std::end(world.name), p.name.begin());
  p.timeStep = world.timeStep;
  p.gravitationalConstant = world.gravitationalConstant;
  p.restitution = world.restitution;
  p.adaptive = world.adaptive;
  p.merge = world.merge;
  p.millisecondsPerUpdate = world.millisecondsPerUpdate;
  p.traceHistoryPoints = world.traceHistoryPoints;
  return p;
}

unsigned changedWorldFields(const WorldParameters& a, const WorldParameters& b) {
  return changed(worldSlots(), a, b);
}

void applyWorldFields(const WorldParameters& p, unsigned fields, World& world) {
  apply(worldSlots(), p, fields, world);
}

QString worldEditTitle(unsigned fields) {
  // The collision model is the pair of merge and restitution.
  if (fields & kWorldMerge) {
    fields = kWorldMerge;
  }
  if (fields == kWorldName) {
    return tr("Rename World");
  }
  const QString field = title(worldSlots(), fields);
  return field.isEmpty() ? tr("Change Simulation Parameters") : tr("Change %1").arg(field);
}
