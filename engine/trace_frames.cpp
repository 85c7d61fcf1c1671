#include "trace_frames.h"

#include <algorithm>

#include "world.h"

const Vector* TraceFrame::positionOf(int32_t bodyId) const {
  for (const ReferencePosition& r : references) {
    if (r.bodyId == bodyId) {
      return &r.position;
    }
  }
  return nullptr;
}

void TraceFrames::watch(int32_t bodyId) {
  if (bodyId != 0 && std::find(watched_.begin(), watched_.end(), bodyId) == watched_.end()) {
    watched_.push_back(bodyId);
  }
}

void TraceFrames::record(uint64_t number, const World& world) {
  TraceFrame& frame = frames_.emplace_back();
  frame.number = number;
  frame.centerOfMass = world.centerOfMass();
  std::size_t kept = 0;
  for (const int32_t id : watched_) {
    if (const Body* body = world.findBodyById(id)) {
      frame.references.push_back({id, body->position});
      watched_[kept++] = id;
    }
  }
  watched_.resize(kept);
}

void TraceFrames::dropNewest() {
  if (!frames_.empty()) {
    frames_.pop_back();
  }
}

void TraceFrames::dropBefore(uint64_t number) {
  while (!frames_.empty() && frames_.front().number < number) {
    frames_.pop_front();
  }
}
