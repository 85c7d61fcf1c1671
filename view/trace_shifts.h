#pragma once

#include <cstddef>
#include <cstdint>

#include "engine/vector.h"

class Body;
class View;
class World;

// The body a view's relative traces and the Graphs palette measure from:
// the one its trackBodyID names, whether or not the camera follows it; null
// when the identifier names no body of the world.
const Body* trackedBody(const View& v, const World& world);

// Where a view draws each trace point. With the world as reference every
// point stays where it was recorded. Otherwise a point moves by where the
// reference is now minus where it was when the point's frame was recorded,
// so it keeps its offset from the reference. A point recorded without that
// reference (before the body was watched or existed, or without a frame)
// stays where it was, and so does every point when the reference is gone.
class TraceShifts {
 public:
  TraceShifts(const View& v, const World& world);

  // False when no point moves: the view can draw the recorded positions.
  bool active() const { return active_; }
  // What to add to a point of the given frame. Points are asked for in the
  // order of the trace list, whose frames only grow.
  Vector shiftFor(uint64_t frame);

 private:
  const World& world_;
  bool active_ = false;
  bool centerOfMass_ = false;
  int32_t bodyId_ = 0;
  // Where the reference is now.
  Vector current_;
  // The next frame to look at, and the answer for the last frame asked.
  std::size_t next_ = 0;
  uint64_t lastFrame_ = 0;
  Vector lastShift_;
};
