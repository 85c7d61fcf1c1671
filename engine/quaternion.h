#pragma once

#include <array>

#include "tolerance.h"
#include "vector.h"

// A rotation held as a scalar w and a vector part v. The default constructor
// gives the zero quaternion, not the identity; code that needs a rotation sets
// the identity explicitly.
class Quaternion {
 public:
  static constexpr double kTolerance = kEngineTolerance;

  Quaternion() = default;
  Quaternion(double w0, double x, double y, double z) : w(w0), v(Vector::of(x, y, z)) {}
  Quaternion(double w0, const Vector& v0) : w(w0), v(v0) {}
  Quaternion(const Quaternion&) = default;
  Quaternion& operator=(const Quaternion&) = default;
  // From roll (about x), pitch (about y) and yaw (about z), in radians.
  Quaternion(double roll, double pitch, double yaw) { setRollPitchYaw(roll, pitch, yaw); }

  void set(double w, double x, double y, double z);
  double norm() const;
  // Unit length when the norm exceeds 1e-12; otherwise the identity.
  Quaternion normalize();

  Quaternion operator*=(const Quaternion& b);
  Quaternion operator*=(double s);
  Quaternion operator*=(const Vector& b);
  // Zero quaternion when |s| <= 1e-12.
  Quaternion operator/=(double s);

  // Vector part of q (0, v) q-bar.
  Vector rotate(const Vector& p) const;
  Quaternion rotate(const Quaternion& p) const;
  Quaternion conjugate() const { return Quaternion(w, -1.0 * v); }

  // (roll, pitch, yaw) in x, y, z. The asin argument is not clamped.
  Vector toRollPitchYaw() const;
  // Yaw about z, then pitch about y, then roll about x. The result is unit
  // length and not normalised again.
  void setRollPitchYaw(double roll, double pitch, double yaw);
  // Column-major 4x4 for glMultMatrixd: the transpose of q's rotation matrix.
  std::array<double, 16> toGLMatrix() const;

  double w = 0.0;
  Vector v;
};

Quaternion operator*(const Quaternion& a, const Quaternion& b);
Quaternion operator*(const Quaternion& q, double s);
Quaternion operator*(double s, const Quaternion& q);
Quaternion operator/(const Quaternion& q, double s);
Quaternion operator+(const Quaternion& a, const Quaternion& b);
Quaternion operator-(const Quaternion& a, const Quaternion& b);
// Products with the pure quaternion (0, v).
Quaternion operator*(const Quaternion& q, const Vector& v);
Quaternion operator*(const Vector& v, const Quaternion& q);
