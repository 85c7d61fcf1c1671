#include "grid_lattice.h"

#include <cmath>

namespace {

// True when v truncates to a 32-bit integer; false for NaN too.
bool fitsInt32(double v) {
  return v > -2147483649.0 && v < 2147483648.0;
}

double component(const Vector& v, int axis) {
  return axis == 0 ? v.x : (axis == 1 ? v.y : v.z);
}

}  // namespace

int64_t GridLattice::lineCount() const {
  int64_t n[3];
  for (int a = 0; a < 3; ++a) {
    n[a] = int64_t{last[a]} - int64_t{first[a]} + 1;
  }
  return n[0] * n[2] + n[0] * n[1] + n[1] * n[2];
}

std::optional<GridLattice> gridLattice(double spacing, const Vector& minCorner,
                                       const Vector& maxCorner) {
  if (!fitsInt32(spacing)) {
    return std::nullopt;
  }
  GridLattice g;
  g.spacing = static_cast<int32_t>(spacing);
  if (g.spacing <= 0) {
    return std::nullopt;
  }
  const Vector grow(static_cast<double>(g.spacing));
  g.hi = maxCorner + grow;
  g.lo = minCorner - grow;
  for (int a = 0; a < 3; ++a) {
    const double lo = component(g.lo, a);
    const double hi = component(g.hi, a);
    if (!fitsInt32(lo) || !fitsInt32(hi)) {
      return std::nullopt;
    }
    // Integer division truncates towards zero, so the outermost values can
    // lie up to one spacing inside the box towards zero.
    g.first[a] = static_cast<int32_t>(lo) / g.spacing;
    g.last[a] = static_cast<int32_t>(hi) / g.spacing;
  }
  if (g.lineCount() > GridLattice::kMaxLines) {
    return std::nullopt;
  }
  return g;
}
