#include "vector.h"

namespace {
constexpr double kDegreesPerRadian = 57.2957795;
}

Vector Vector::fromCylindrical(double r, double z, double theta) {
  return of(r * std::cos(theta), r * std::sin(theta), z);
}

Vector Vector::fromSpherical(double r, double phi, double theta) {
  return of(r * std::sin(theta) * std::cos(phi), r * std::sin(theta) * std::sin(phi),
            r * std::cos(theta));
}

double degToRad(double d) {
  return d / kDegreesPerRadian;
}

double radToDeg(double r) {
  return kDegreesPerRadian * r;
}
