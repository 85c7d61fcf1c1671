#pragma once

#include <cmath>

// The arithmetic of the shared pair expressions (pairForce, touching) on
// plain doubles, as the passes over the body list use them.
struct ScalarOps {
  using V = double;
  using M = bool;
  static V set1(double s) { return s; }
  static V add(V a, V b) { return a + b; }
  static V mul(V a, V b) { return a * b; }
  static V div(V a, V b) { return a / b; }
  static V sqrt(V a) { return std::sqrt(a); }
  static V abs(V a) { return std::fabs(a); }
  // False when either side is not a number.
  static M greater(V a, V b) { return a > b; }
  static M greaterOrEqual(V a, V b) { return a >= b; }
};
