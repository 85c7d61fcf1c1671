#pragma once

#include <cstdint>
#include <optional>

#include "engine/vector.h"

// The grid's lattice for one frame: the box that holds every body grown by one
// spacing on each side, and on each axis the multipliers k whose values k *
// spacing carry lines.
struct GridLattice {
  // Beyond this many lines the lattice is not drawn, so that one frame stays
  // inside the 1/24 s redraw interval under software rendering: the largest
  // lattice costs llvmpipe about 14 ms of CPU per 800 x 600 frame (30,000
  // lines cost ten times as much). A denser lattice would mostly fill the
  // window with grid colour anyway.
  static constexpr int64_t kMaxLines = 3000;

  int64_t lineCount() const;

  int32_t spacing = 0;
  Vector lo;
  Vector hi;
  // Inclusive ranges of k, per axis x, y, z.
  int32_t first[3] = {};
  int32_t last[3] = {};
};

// The lattice for a spacing (used by its integer part) and the bodies' corner
// points, or nothing when it must be skipped: the spacing truncates to 0 or
// less, a box coordinate lies outside the 32-bit range the lattice computes
// in, or the lattice would have more than kMaxLines lines.
std::optional<GridLattice> gridLattice(double spacing, const Vector& minCorner,
                                       const Vector& maxCorner);
