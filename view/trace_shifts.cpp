#include "trace_shifts.h"

#include "engine/world.h"
#include "view.h"

const Body* trackedBody(const View& v, const World& world) {
  return v.trackBodyID != 0 ? world.findBodyById(v.trackBodyID) : nullptr;
}

TraceShifts::TraceShifts(const View& v, const World& world) : world_(world) {
  if (v.traceReference == TraceReference::CenterOfMass) {
    centerOfMass_ = true;
    current_ = world.centerOfMass();
    active_ = true;
  } else if (v.traceReference == TraceReference::TrackedBody) {
    if (const Body* body = trackedBody(v, world)) {
      bodyId_ = body->id;
      current_ = body->position;
      active_ = true;
    }
  }
}

Vector TraceShifts::shiftFor(uint64_t frame) {
  if (!active_ || frame == 0) {
    return Vector();
  }
  if (frame == lastFrame_) {
    return lastShift_;
  }
  const auto& frames = world_.traceFrames.frames();
  while (next_ < frames.size() && frames[next_].number < frame) {
    ++next_;
  }
  lastFrame_ = frame;
  lastShift_ = Vector();
  if (next_ < frames.size() && frames[next_].number == frame) {
    const TraceFrame& f = frames[next_];
    if (centerOfMass_) {
      lastShift_ = current_ - f.centerOfMass;
    } else if (const Vector* then = f.positionOf(bodyId_)) {
      lastShift_ = current_ - *then;
    }
  }
  return lastShift_;
}
