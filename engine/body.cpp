#include "body.h"

#include <cstdio>
#include <cstring>

namespace {
// One per thread (see BodyObserver).
thread_local BodyObserver* gObserver = nullptr;
}  // namespace

void setBodyObserver(BodyObserver* observer) {
  gObserver = observer;
}

BodyObserver* bodyObserver() {
  return gObserver;
}

Body::Body(int creationNumber) {
  std::snprintf(name, sizeof name, "Body %i", creationNumber);
  if (gObserver != nullptr) {
    gObserver->worldCreateBody(*this);
  }
}

Body::Body(const Body& other)
    : ListStorable(other),
      position(other.position),
      velocity(other.velocity),
      force(other.force),
      radius(other.radius),
      mass(other.mass),
      id(other.id),
      active(other.active),
      traceEnable(other.traceEnable),
      showVectors(other.showVectors) {
  std::memcpy(name, other.name, sizeof name);
  std::memcpy(color, other.color, sizeof color);
  if (gObserver != nullptr) {
    gObserver->worldCreateBody(*this);
  }
}

Body::~Body() {
  if (gObserver != nullptr) {
    gObserver->worldDeleteBody(*this);
  }
}
