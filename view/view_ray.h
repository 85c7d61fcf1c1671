#pragma once

#include <optional>

#include "engine/vector.h"

class View;

// The geometry between a view's pixels and the world, as the view's last
// frame drew it: the look-at camera, then the trackball rotation about the
// world origin, then the frustum. Pixel positions are device pixels, x from
// the left edge and y from the top, in a drawing area of the trackball's
// width and height.

// A half-line in world coordinates; the direction is not normalised.
struct Ray {
  Vector origin;
  Vector direction;
};

// The ray from the eye through the pixel position (x, yTop). Nothing while
// the view has no area or its camera has no direction.
std::optional<Ray> pointerRay(const View& v, double x, double yTop);

// Where a world point appears, as a pixel position; nothing when it lies on
// or behind the eye's plane.
struct PixelPoint {
  double x;
  double yTop;
};
std::optional<PixelPoint> projectToView(const View& v, const Vector& p);

// The distance along the ray to the first point where it enters a sphere,
// in units of the ray's direction; nothing when it misses the sphere or the
// sphere lies behind the origin.
std::optional<double> raySphereHit(const Ray& ray, const Vector& centre, double radius);
