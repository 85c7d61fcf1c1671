#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "engine/body.h"
#include "engine/position_point.h"
#include "engine/world.h"

// Records the body hooks in the order they fire, and uninstalls itself.
class RecordingObserver : public BodyObserver {
 public:
  struct Event {
    bool created;
    std::string name;
    int id;
  };

  RecordingObserver() { setBodyObserver(this); }
  ~RecordingObserver() override { setBodyObserver(nullptr); }
  RecordingObserver(const RecordingObserver&) = delete;
  RecordingObserver& operator=(const RecordingObserver&) = delete;

  void worldCreateBody(Body& body) override { events.push_back({true, body.name, body.id}); }
  void worldDeleteBody(Body& body) override { events.push_back({false, body.name, body.id}); }

  int count(bool created) const {
    int n = 0;
    for (const Event& e : events)
      n += e.created == created ? 1 : 0;
    return n;
  }

  std::vector<Event> events;
};

inline Body* addBody(World& world, Vector position, Vector velocity = Vector(), double mass = 1.0,
                     double radius = 1.0) {
  Body* b = world.createBody();
  b->position = position;
  b->velocity = velocity;
  b->mass = mass;
  b->radius = radius;
  return b;
}

inline void takeSteps(World& world, int n) {
  for (int i = 0; i < n; ++i)
    world.step();
}

inline std::vector<Body*> bodiesOf(const World& world) {
  std::vector<Body*> out;
  forEachItem<Body>(*world.bodies, [&](Body& b) { out.push_back(&b); });
  return out;
}

inline std::vector<int32_t> idsOf(const World& world) {
  std::vector<int32_t> ids;
  forEachItem<Body>(*world.bodies, [&](const Body& b) { ids.push_back(b.id); });
  return ids;
}

inline Vector vec(double x, double y, double z) {
  return Vector::of(x, y, z);
}

// The bits of a double, every NaN counted as one: which NaN an operation on
// two NaNs returns depends on operand order, which the compiler may swap.
inline uint64_t bitsOf(double d) {
  return std::isnan(d) ? 0x7FF8000000000000u : std::bit_cast<uint64_t>(d);
}

// Every field of every body that a step changes or the program shows or
// stores, then the trace points and the time, as bits: two worlds in the same
// state give the same list.
inline std::vector<uint64_t> stateBits(const World& world) {
  std::vector<uint64_t> bits;
  auto add = [&](std::initializer_list<double> values) {
    for (double d : values)
      bits.push_back(bitsOf(d));
  };
  forEachItem<Body>(*world.bodies, [&](const Body& b) {
    for (const Vector* v : {&b.position, &b.velocity, &b.acceleration, &b.force})
      add({v->x, v->y, v->z});
    add({b.mass, b.radius, static_cast<double>(b.id), b.color[0], b.color[1], b.color[2]});
    add({static_cast<double>(b.active), static_cast<double>(b.traceEnable),
         static_cast<double>(b.showVectors)});
  });
  forEachItem<PositionPoint>(*world.tracePoints, [&](const PositionPoint& p) {
    add({p.x, p.y, p.z, p.color[0], p.color[1], p.color[2]});
  });
  add({static_cast<double>(world.traceFrames.frames().size())});
  add({world.elapsedTime, world.timeStep});
  return bits;
}

// A vector's components, for exact comparisons in expectations.
inline std::vector<double> xyz(const Vector& v) {
  return {v.x, v.y, v.z};
}

// n bodies at random in a cube of the given half side, G = 1: half-unit
// radii and speeds of about 1. In a cube of half side 10 some pairs touch at
// once and more come into contact within a few steps of 0.05.
inline void addRandomCluster(World& world, int n, double halfSide, uint64_t seed) {
  std::mt19937_64 rng(seed);
  std::uniform_real_distribution<double> unit(-1.0, 1.0);
  for (int k = 0; k < n; ++k) {
    Body* b = world.createBody();
    b->position = Vector::of(unit(rng) * halfSide, unit(rng) * halfSide, unit(rng) * halfSide);
    b->velocity = Vector::of(unit(rng), unit(rng), unit(rng));
    b->mass = 1.0 + std::fabs(unit(rng)) * 10.0;
    b->radius = 0.4 + 0.2 * std::fabs(unit(rng));
    b->color[0] = static_cast<float>(std::fabs(unit(rng)));
  }
  world.gravitationalConstant = 1.0;
}
