#include "view_ray.h"

#include <cmath>

#include "camera.h"
#include "view.h"

namespace {

// The camera's axes in the frame where cameraPosition and cameraFocus live,
// as gluLookAt forms them: side, up and forward.
struct CameraAxes {
  Vector side;
  Vector up;
  Vector forward;
};

std::optional<CameraAxes> cameraAxes(const View& v) {
  const Vector forward = normalized(v.cameraFocus - v.cameraPosition);
  const Vector side = normalized(cross(forward, Vector::of(0.0, 1.0, 0.0)));
  if (forward.isZero() || side.isZero()) {
    return std::nullopt;
  }
  return CameraAxes{side, cross(side, forward), forward};
}

// The trackball matrix M turns world points into points of the camera's
// frame (toFrame); M is a rotation, so its transpose turns them back.
Vector rotate(const View& v, const Vector& p, bool toFrame) {
  if (!v.trackballEnabled) {
    return p;
  }
  // Column-major: row r, column c of M is m[4c + r].
  const auto m = v.trackball->glMatrix();
  const auto at = [&m, toFrame](int r, int c) { return toFrame ? m[4 * c + r] : m[4 * r + c]; };
  return Vector::of(at(0, 0) * p.x + at(0, 1) * p.y + at(0, 2) * p.z,
                    at(1, 0) * p.x + at(1, 1) * p.y + at(1, 2) * p.z,
                    at(2, 0) * p.x + at(2, 1) * p.y + at(2, 2) * p.z);
}

}  // namespace

std::optional<Ray> pointerRay(const View& v, double x, double yTop) {
  const Trackball& tb = *v.trackball;
  const std::optional<FrustumExtent> extent = frustumExtent(tb);
  const std::optional<CameraAxes> axes = cameraAxes(v);
  if (!extent || !axes) {
    return std::nullopt;
  }
  // The pixel's place on the near plane, one unit in front of the eye.
  const double ex = (2.0 * x / tb.width - 1.0) * extent->right;
  const double ey = (1.0 - 2.0 * yTop / tb.height) * extent->top;
  const Vector direction = ex * axes->side + ey * axes->up + axes->forward;
  return Ray{rotate(v, v.cameraPosition, false), rotate(v, direction, false)};
}

std::optional<PixelPoint> projectToView(const View& v, const Vector& p) {
  const Trackball& tb = *v.trackball;
  const std::optional<FrustumExtent> extent = frustumExtent(tb);
  const std::optional<CameraAxes> axes = cameraAxes(v);
  if (!extent || !axes) {
    return std::nullopt;
  }
  const Vector d = rotate(v, p, true) - v.cameraPosition;
  const double depth = dot(d, axes->forward);
  if (!(depth > 0.0)) {
    return std::nullopt;
  }
  const double nx = dot(d, axes->side) / depth / extent->right;
  const double ny = dot(d, axes->up) / depth / extent->top;
  return PixelPoint{(nx + 1.0) * tb.width / 2.0, (1.0 - ny) * tb.height / 2.0};
}

std::optional<double> raySphereHit(const Ray& ray, const Vector& centre, double radius) {
  const Vector oc = ray.origin - centre;
  const double a = dot(ray.direction, ray.direction);
  const double b = dot(oc, ray.direction);
  const double c = dot(oc, oc) - radius * radius;
  const double discriminant = b * b - a * c;
  if (!(a > 0.0) || !(discriminant >= 0.0)) {
    return std::nullopt;
  }
  const double root = std::sqrt(discriminant);
  // The entry point, or the exit point when the eye is inside the sphere.
  double t = (-b - root) / a;
  if (t < 0.0) {
    t = (-b + root) / a;
  }
  if (!(t >= 0.0)) {
    return std::nullopt;
  }
  return t;
}
