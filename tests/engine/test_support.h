#pragma once

#include <string>
#include <vector>

#include "engine/body.h"
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

inline std::vector<Body*> bodiesOf(const World& world) {
  std::vector<Body*> out;
  forEachItem<Body>(*world.bodies, [&](Body& b) { out.push_back(&b); });
  return out;
}

inline Vector vec(double x, double y, double z) {
  return Vector::of(x, y, z);
}
