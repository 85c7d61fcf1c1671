#include "trackball.h"

#include <cmath>

namespace {

// Distance by which a point outside the outline is pulled inside it, in
// normalised units.
constexpr double kOutlineInset = 0.05;

}  // namespace

Trackball::Trackball(double r) : radius(r) {}

void Trackball::setSize(double w, double h) {
  width = w;
  height = h;
}

void Trackball::beginDrag(double x, double y) {
  lastX = (2.0 * x - width) / width;
  lastY = (-2.0 * y + height) / height;
  dragStartRotation = rotation;
  dragging = true;
}

void Trackball::drag(double x, double y) {
  const double nx = (2.0 * x - width) / width;
  const double ny = (-2.0 * y + height) / height;
  if (!dragging) {
    return;
  }
  // The earlier point is projected again from its stored 2-D position.
  Vector a = Vector::of(lastX, lastY, 0.0);
  Vector b = Vector::of(nx, ny, 0.0);
  projectToSphere(a);
  projectToSphere(b);
  const Quaternion step = rotationBetween(a, b);
  rotation = rotation * step;
  rotation.normalize();
  lastX = nx;
  lastY = ny;
}

void Trackball::endDrag(double /*x*/, double /*y*/) {
  dragging = false;
  lastX = 0.0;
  lastY = 0.0;
}

void Trackball::projectToSphere(Vector& p) const {
  const double d2 = p.x * p.x + p.y * p.y;
  if (d2 > radius * radius) {
    const double scale = (radius - kOutlineInset) / std::sqrt(d2);
    p.x *= scale;
    p.y *= scale;
    p.z = 0.0;
  } else {
    p.z = std::sqrt(radius * radius - d2);
  }
}

Quaternion Trackball::rotationBetween(const Vector& a, const Vector& b) {
  Quaternion q(dot(a, b), cross(b, a));
  q.normalize();
  return q;
}
