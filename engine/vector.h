#pragma once

#include <bit>
#include <cmath>
#include <cstdint>

#include "list_storable.h"
#include "tolerance.h"

// Double-precision 3-vector in which positions, velocities, accelerations,
// forces and camera points are expressed. It derives from ListStorable so it
// can live in a LinkedList. The arithmetic is inline: the force pass calls it
// several times per body pair.
class Vector : public ListStorable {
 public:
  // Absolute bound that guards divisions and normalisation.
  static constexpr double kTolerance = kEngineTolerance;

  Vector() = default;
  explicit Vector(double s) : x(s), y(s), z(s) {}
  Vector(const Vector&) = default;
  Vector& operator=(const Vector&) = default;

  // Convenience for code and tests that know all three components.
  static Vector of(double x, double y, double z) {
    Vector v;
    v.x = x;
    v.y = y;
    v.z = z;
    return v;
  }

  double lengthSquared() const { return x * x + y * y + z * z; }
  double length() const { return std::sqrt(x * x + y * y + z * z); }
  Vector& zero() {
    x = y = z = 0.0;
    return *this;
  }
  bool isZero() const {
    return std::fabs(x) < kTolerance && std::fabs(y) < kTolerance && std::fabs(z) < kTolerance;
  }
  Vector abs() const { return of(std::fabs(x), std::fabs(y), std::fabs(z)); }

  Vector& operator+=(const Vector& b) {
    x += b.x;
    y += b.y;
    z += b.z;
    return *this;
  }
  Vector& operator-=(const Vector& b) {
    x -= b.x;
    y -= b.y;
    z -= b.z;
    return *this;
  }
  Vector& operator*=(double s) {
    x *= s;
    y *= s;
    z *= s;
    return *this;
  }
  // Divides only when |s| > 1e-12; otherwise leaves the vector unchanged.
  Vector& operator/=(double s) {
    if (std::fabs(s) > kTolerance) {
      x /= s;
      y /= s;
      z /= s;
    }
    return *this;
  }

  static Vector fromCylindrical(double r, double z, double theta);
  // theta is the angle from +z, phi the angle about +z from +x.
  static Vector fromSpherical(double r, double phi, double theta);

  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
};

inline double dot(const Vector& a, const Vector& b) {
  return a.x * b.x + a.y * b.y + a.z * b.z;
}

inline Vector cross(const Vector& a, const Vector& b) {
  return Vector::of(a.y * b.z - b.y * a.z, a.z * b.x - b.z * a.x, a.x * b.y - b.x * a.y);
}

// v / |v| when |v| > 1e-12, otherwise the zero vector (also for NaN lengths):
// the length, not its square, is compared with the tolerance.
inline Vector normalized(const Vector& v) {
  const double l = v.length();
  if (std::fabs(l) > Vector::kTolerance) {
    return Vector::of(v.x / l, v.y / l, v.z / l);
  }
  return Vector();
}

inline Vector operator+(const Vector& a, const Vector& b) {
  return Vector::of(a.x + b.x, a.y + b.y, a.z + b.z);
}

inline Vector operator-(const Vector& a, const Vector& b) {
  return Vector::of(a.x - b.x, a.y - b.y, a.z - b.z);
}

inline Vector operator*(double s, const Vector& v) {
  return Vector::of(s * v.x, s * v.y, s * v.z);
}

inline Vector operator*(const Vector& v, double s) {
  return Vector::of(v.x * s, v.y * s, v.z * s);
}

// v / s when |s| > 1e-12, otherwise the zero vector. Unlike operator/=, which
// leaves its operand as it was: the engine depends on the difference.
inline Vector operator/(const Vector& v, double s) {
  if (std::fabs(s) > Vector::kTolerance) {
    return Vector::of(v.x / s, v.y / s, v.z / s);
  }
  return Vector();
}

// Equal bit for bit: 0 and -0 differ, a NaN equals the same NaN. Edits that
// must restore a value exactly compare this way.
inline bool sameBits(double a, double b) {
  return std::bit_cast<uint64_t>(a) == std::bit_cast<uint64_t>(b);
}
inline bool sameBits(const Vector& a, const Vector& b) {
  return sameBits(a.x, b.x) && sameBits(a.y, b.y) && sameBits(a.z, b.z);
}

// The angle conversions use the factor 57.2957795 rather than 180/pi at full
// precision; palettes and datafiles depend on these exact values.
double degToRad(double d);
double radToDeg(double r);
