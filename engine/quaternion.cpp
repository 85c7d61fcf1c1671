#include "quaternion.h"

#include <cmath>

void Quaternion::set(double nw, double x, double y, double z) {
  w = nw;
  v.x = x;
  v.y = y;
  v.z = z;
}

double Quaternion::norm() const {
  return std::sqrt(w * w + v.x * v.x + v.y * v.y + v.z * v.z);
}

Quaternion Quaternion::normalize() {
  const double n = norm();
  if (n > kTolerance) {
    w /= n;
    v.x /= n;
    v.y /= n;
    v.z /= n;
  } else {
    set(1.0, 0.0, 0.0, 0.0);
  }
  return *this;
}

Quaternion Quaternion::operator*=(const Quaternion& b) {
  *this = *this * b;
  return *this;
}

Quaternion Quaternion::operator*=(double s) {
  w *= s;
  v *= s;
  return *this;
}

Quaternion Quaternion::operator*=(const Vector& b) {
  *this = *this * b;
  return *this;
}

Quaternion Quaternion::operator/=(double s) {
  if (std::fabs(s) > kTolerance) {
    w /= s;
    v.x /= s;
    v.y /= s;
    v.z /= s;
  } else {
    set(0.0, 0.0, 0.0, 0.0);
  }
  return *this;
}

Vector Quaternion::rotate(const Vector& p) const {
  return (*this * Quaternion(0.0, p) * conjugate()).v;
}

Quaternion Quaternion::rotate(const Quaternion& p) const {
  return *this * p * conjugate();
}

Vector Quaternion::toRollPitchYaw() const {
  const double x = v.x;
  const double y = v.y;
  const double z = v.z;
  const double yaw = std::atan2(2.0 * (x * y + w * z), w * w + x * x - y * y - z * z);
  const double pitch = std::asin(-2.0 * (x * z - w * y));
  const double roll = std::atan2(2.0 * (y * z + w * x), w * w - x * x - y * y + z * z);
  return Vector::of(roll, pitch, yaw);
}

void Quaternion::setRollPitchYaw(double roll, double pitch, double yaw) {
  const double cr = std::cos(0.5 * roll);
  const double sr = std::sin(0.5 * roll);
  const double cp = std::cos(0.5 * pitch);
  const double sp = std::sin(0.5 * pitch);
  const double cy = std::cos(0.5 * yaw);
  const double sy = std::sin(0.5 * yaw);
  set(cr * cp * cy + sr * sp * sy, sr * cp * cy - cr * sp * sy, cr * sp * cy + sr * cp * sy,
      cr * cp * sy - sr * sp * cy);
}

std::array<double, 16> Quaternion::toGLMatrix() const {
  const double n = norm();
  const double s = n > 0.0 ? 2.0 / n : 0.0;
  const double xs = v.x * s, ys = v.y * s, zs = v.z * s;
  const double wx = w * xs, wy = w * ys, wz = w * zs;
  const double xx = v.x * xs, xy = v.x * ys, xz = v.x * zs;
  const double yy = v.y * ys, yz = v.y * zs, zz = v.z * zs;
  return {1.0 - (yy + zz),
          xy - wz,
          xz + wy,
          0.0,  //
          xy + wz,
          1.0 - (xx + zz),
          yz - wx,
          0.0,  //
          xz - wy,
          yz + wx,
          1.0 - (xx + yy),
          0.0,  //
          0.0,
          0.0,
          0.0,
          1.0};
}

Quaternion operator*(const Quaternion& a, const Quaternion& b) {
  return Quaternion(a.w * b.w - dot(a.v, b.v), a.w * b.v + b.w * a.v + cross(a.v, b.v));
}

Quaternion operator*(const Quaternion& q, double s) {
  return Quaternion(q.w * s, q.v * s);
}

Quaternion operator*(double s, const Quaternion& q) {
  return Quaternion(s * q.w, s * q.v);
}

Quaternion operator/(const Quaternion& q, double s) {
  Quaternion r = q;
  return r /= s;
}

Quaternion operator+(const Quaternion& a, const Quaternion& b) {
  return Quaternion(a.w + b.w, a.v + b.v);
}

Quaternion operator-(const Quaternion& a, const Quaternion& b) {
  return Quaternion(a.w - b.w, a.v - b.v);
}

Quaternion operator*(const Quaternion& q, const Vector& v) {
  return q * Quaternion(0.0, v);
}

Quaternion operator*(const Vector& v, const Quaternion& q) {
  return Quaternion(0.0, v) * q;
}
