#include "edit_values.h"

#include <QCoreApplication>
#include <algorithm>
#include <cstring>

#include "engine/world.h"

namespace {

QString tr(const char* text) {
  return QCoreApplication::translate("EditValues", text);
}

bool sameColor(const std::array<float, 3>& a, const std::array<float, 3>& b) {
  return std::memcmp(a.data(), b.data(), sizeof a) == 0;
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
  unsigned fields = 0;
  const auto mark = [&fields](bool same, unsigned field) { fields |= same ? 0u : field; };
  mark(sameBits(a.position, b.position), kBodyPosition);
  mark(sameBits(a.velocity, b.velocity), kBodyVelocity);
  mark(sameBits(a.acceleration, b.acceleration), kBodyAcceleration);
  mark(sameBits(a.mass, b.mass), kBodyMass);
  mark(sameBits(a.radius, b.radius), kBodyRadius);
  mark(sameColor(a.color, b.color), kBodyColor);
  mark(a.traceEnable == b.traceEnable, kBodyTrace);
  mark(a.showVectors == b.showVectors, kBodyVectors);
  mark(a.nameView() == b.nameView(), kBodyName);
  return fields;
}

void applyBodyFields(const BodyState& s, unsigned fields, Body& body) {
  if (fields & kBodyPosition)
    body.position = s.position;
  if (fields & kBodyVelocity)
    body.velocity = s.velocity;
  if (fields & kBodyAcceleration)
    body.acceleration = s.acceleration;
  if (fields & kBodyMass)
    body.mass = s.mass;
  if (fields & kBodyRadius)
    body.radius = s.radius;
  if (fields & kBodyColor)
    std::copy(s.color.begin(), s.color.end(), body.color);
  if (fields & kBodyTrace)
    body.traceEnable = s.traceEnable;
  if (fields & kBodyVectors)
    body.showVectors = s.showVectors;
}

QString bodyFieldTitle(unsigned fields) {
  switch (fields) {
    case kBodyPosition:
      return tr("Position");
    case kBodyVelocity:
      return tr("Velocity");
    case kBodyAcceleration:
      return tr("Acceleration");
    case kBodyMass:
      return tr("Mass");
    case kBodyRadius:
      return tr("Radius");
    case kBodyColor:
      return tr("Colour");
    case kBodyTrace:
      return tr("Trace");
    case kBodyVectors:
      return tr("Vectors");
    case kBodyName:
      return tr("Name");
    default:
      return {};
  }
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
  unsigned fields = 0;
  const auto mark = [&fields](bool same, unsigned field) { fields |= same ? 0u : field; };
  mark(std::string_view(a.name.data()) == std::string_view(b.name.data()), kWorldName);
  mark(sameBits(a.timeStep, b.timeStep), kWorldTimeStep);
  mark(sameBits(a.gravitationalConstant, b.gravitationalConstant), kWorldGravitationalConstant);
  mark(sameBits(a.restitution, b.restitution), kWorldRestitution);
  mark(a.merge == b.merge, kWorldMerge);
  mark(a.adaptive == b.adaptive, kWorldAdaptive);
  mark(std::memcmp(&a.millisecondsPerUpdate, &b.millisecondsPerUpdate, sizeof(float)) == 0,
       kWorldSpeed);
  mark(a.traceHistoryPoints == b.traceHistoryPoints, kWorldTraceHistory);
  return fields;
}

void applyWorldFields(const WorldParameters& p, unsigned fields, World& world) {
  if (fields & kWorldName)
    world.setName(p.name.data());
  if (fields & kWorldTimeStep)
    world.timeStep = p.timeStep;
  if (fields & kWorldGravitationalConstant)
    world.gravitationalConstant = p.gravitationalConstant;
  if (fields & kWorldRestitution)
    world.restitution = p.restitution;
  if (fields & kWorldMerge)
    world.merge = p.merge;
  if (fields & kWorldAdaptive)
    world.adaptive = p.adaptive;
  // Edits are recorded in design mode only, where the clock never runs: the
  // speed needs no re-arming, and the value kept is the bounded one.
  if (fields & kWorldSpeed)
    world.millisecondsPerUpdate = p.millisecondsPerUpdate;
  if (fields & kWorldTraceHistory)
    world.traceHistoryPoints = p.traceHistoryPoints;
}

QString worldEditTitle(unsigned fields) {
  // The collision model is the pair of merge and restitution.
  if (fields & kWorldMerge) {
    return tr("Change Collision Model");
  }
  switch (fields) {
    case kWorldName:
      return tr("Rename World");
    case kWorldTimeStep:
      return tr("Change Time Step");
    case kWorldGravitationalConstant:
      return tr("Change Gravitational Constant");
    case kWorldRestitution:
      return tr("Change Restitution");
    case kWorldAdaptive:
      return tr("Change Adaptive Time Stepping");
    case kWorldSpeed:
      return tr("Change Milliseconds per Update");
    case kWorldTraceHistory:
      return tr("Change Trace History Points");
    default:
      return tr("Change Simulation Parameters");
  }
}
