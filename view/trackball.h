#pragma once

#include <array>

#include "engine/quaternion.h"
#include "engine/vector.h"

// Turns left-button drags into an accumulated scene rotation, and keeps the
// drawing-area size and the state of a right-button camera drag. Pointer
// positions are in pixels, x from the left edge and y from the top edge.
class Trackball {
 public:
  explicit Trackball(double r);

  void setSize(double w, double h);
  void beginDrag(double x, double y);
  // Applies only the rotation since the previous event, so the result
  // follows the path of the pointer. Does nothing unless a drag is on.
  void drag(double x, double y);
  // The position is not used.
  void endDrag(double x, double y);
  // Column-major matrix for glMultMatrixd.
  std::array<double, 16> glMatrix() const { return rotation.toGLMatrix(); }

  // Pulls a point outside the sphere's outline 0.05 inside it, in the plane
  // z = 0; lifts a point inside the outline onto the sphere.
  void projectToSphere(Vector& p) const;
  // Rotation carrying the earlier projected point a towards the later b
  // (twice their angle, about b x a); the identity when a equals b.
  static Quaternion rotationBetween(const Vector& a, const Vector& b);

  Quaternion rotation{1.0, 0.0, 0.0, 0.0};
  Quaternion dragStartRotation{1.0, 0.0, 0.0, 0.0};
  bool dragging = false;
  bool zooming = false;
  // Last pointer position of the drag, in normalised units (-1 to 1).
  double lastX = 0.0;
  double lastY = 0.0;
  double radius;
  // Drawing-area size in pixels.
  double width = 0.0;
  double height = 0.0;
  // Where the right-button drag began, in pixels, y from the top.
  double zoomStartX = 0.0;
  double zoomStartY = 0.0;
};
