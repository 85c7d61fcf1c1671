#pragma once

#include <cstdint>
#include <optional>

#include "engine/vector.h"

class Body;
class View;
class World;

// A finished drag of a body (Move) or of the tip of its velocity vector
// (Aim): the identifier and the position or velocity before and after.
struct BodyDrag {
  enum class Kind { Move, Aim };
  Kind kind = Kind::Move;
  int32_t bodyId = 0;
  Vector before;
  Vector after;
};

// What a drag starting at a pixel would take hold of, and the world point
// grabbed: the point of the body's surface under the pointer, or the tip of
// its velocity vector.
struct DragTarget {
  BodyDrag::Kind kind = BodyDrag::Kind::Move;
  int32_t bodyId = 0;
  Vector grabbed;
};

// The drag target at the pixel position (x, yTop). A velocity tip drawn
// within tipRadius pixels of the pointer wins, the nearest first, when the
// view shows the body's vectors and the tip lies outside the body's own
// disc (a body at rest is moved, not aimed); otherwise the nearest body
// under the pointer.
std::optional<DragTarget> dragTargetAt(const View& v, const World& world, double x, double yTop,
                                       double tipRadius);

// Moves a body, or the tip of its velocity vector, so that the grabbed point
// follows the pointer in the pan plane through that point: the component
// across the plane never changes. The body is looked up by identifier at
// every event, so a body that has gone ends nothing but the drag's effect.
class BodyDragger {
 public:
  bool active() const { return target_.has_value(); }
  BodyDrag::Kind kind() const { return drag_.kind; }

  // panType is one of the kPanType codes; any other code drags in XY.
  void begin(const DragTarget& target, const Body& body, int panType);
  void drag(const View& v, World& world, double x, double yTop);
  // The drag's record when it changed the value; the drag is over.
  std::optional<BodyDrag> end();
  // Puts the value back as it was when the drag began; the drag is over.
  void cancel(World& world);

 private:
  Vector* draggedValue(World& world) const;

  std::optional<DragTarget> target_;
  BodyDrag drag_;
  // The axis across the pan plane: 0 for x, 1 for y, 2 for z.
  int normal_ = 2;
};
