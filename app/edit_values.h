#pragma once

#include <QString>
#include <array>
#include <cstdint>
#include <string_view>

#include "engine/names.h"
#include "engine/vector.h"

class Body;
class World;

// The fields of a body that the user sees and edits, with its identifier, as
// plain values: what an undo entry keeps to put a field, or a deleted body,
// back exactly. A body's force and the integrator's scratch fields are left
// out: every step writes them before it reads them.
struct BodyState {
  static BodyState of(const Body& body);
  std::string_view nameView() const { return name.data(); }

  int32_t id = 0;
  Vector position;
  Vector velocity;
  Vector acceleration;
  double radius = 0.0;
  double mass = 0.0;
  std::array<char, kNameSize> name{};
  std::array<float, 3> color{};
  bool traceEnable = false;
  bool showVectors = false;
};

// The fields as bits, for what an edit changed.
enum BodyField : unsigned {
  kBodyPosition = 1u << 0,
  kBodyVelocity = 1u << 1,
  kBodyAcceleration = 1u << 2,
  kBodyMass = 1u << 3,
  kBodyRadius = 1u << 4,
  kBodyColor = 1u << 5,
  kBodyTrace = 1u << 6,
  kBodyVectors = 1u << 7,
  kBodyName = 1u << 8,
  kAllBodyFields = (1u << 9) - 1,
};

// The fields whose values differ bit for bit.
unsigned changedBodyFields(const BodyState& a, const BodyState& b);
// Writes the given fields of the state into the body; the name is left to
// the caller, whose rename keeps the Body menu in step.
void applyBodyFields(const BodyState& state, unsigned fields, Body& body);
// The name of exactly one field as an undo title shows it ("Mass"); empty
// for several.
QString bodyFieldTitle(unsigned fields);

// The world's simulation parameters, as the simulation palette edits them.
struct WorldParameters {
  static WorldParameters of(const World& world);

  std::array<char, kNameSize> name{};
  double timeStep = 0.0;
  double gravitationalConstant = 0.0;
  double restitution = 0.0;
  bool adaptive = false;
  bool merge = false;
  float millisecondsPerUpdate = 0.0f;
  int32_t traceHistoryPoints = 0;
};

enum WorldField : unsigned {
  kWorldName = 1u << 0,
  kWorldTimeStep = 1u << 1,
  kWorldGravitationalConstant = 1u << 2,
  kWorldRestitution = 1u << 3,
  kWorldMerge = 1u << 4,
  kWorldAdaptive = 1u << 5,
  kWorldSpeed = 1u << 6,
  kWorldTraceHistory = 1u << 7,
};

unsigned changedWorldFields(const WorldParameters& a, const WorldParameters& b);
void applyWorldFields(const WorldParameters& parameters, unsigned fields, World& world);
// The title of an edit of these fields ("Change Time Step").
QString worldEditTitle(unsigned fields);
