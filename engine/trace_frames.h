#pragma once

#include <cstdint>
#include <deque>
#include <vector>

#include "vector.h"

class World;

// Where one body stood when a step's trace points were recorded.
struct ReferencePosition {
  int32_t bodyId = 0;
  Vector position;
};

// What a step's trace points were recorded against: the centre of mass and
// the positions of the watched bodies at that moment. A view that draws
// traces relative to a reference moves each point by where the reference is
// now minus where it was then.
struct TraceFrame {
  // The number every trace point of that step carries; numbers only grow.
  uint64_t number = 0;
  Vector centerOfMass;
  // In the order of the watch list then; only bodies that existed.
  std::vector<ReferencePosition> references;

  // Where the body was, or null when it was not recorded in this frame
  // (not watched yet, or not in the world then).
  const Vector* positionOf(int32_t bodyId) const;
};

// The frames of the steps whose trace points are still in the world's list,
// oldest first. The world adds one frame per step that records at least one
// point and drops frames once the last of their points has been trimmed, so
// the frames never outnumber the points.
class TraceFrames {
 public:
  // Asks that the body's position be kept with every frame from the next
  // recording on. Identifier 0 (no body) is ignored. Requests outlive a reset
  // of the world: a reloaded design keeps its identifiers, and its first
  // steps may come before any view has asked again. A body missing when a
  // frame is recorded is forgotten.
  void watch(int32_t bodyId);
  const std::vector<int32_t>& watched() const { return watched_; }

  // Appends the frame for the world as it stands.
  void record(uint64_t number, const World& world);
  // Takes back the newest frame (a cancelled step).
  void dropNewest();
  // Drops every frame numbered below the given number.
  void dropBefore(uint64_t number);
  void clear() { frames_.clear(); }

  const std::deque<TraceFrame>& frames() const { return frames_; }

 private:
  std::deque<TraceFrame> frames_;
  std::vector<int32_t> watched_;
};
