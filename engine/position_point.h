#pragma once

#include <cstdint>

#include "list_storable.h"

// One trace dot: where a traced body was at the start of a step, and its
// colour then. It keeps no reference to the body.
class PositionPoint : public ListStorable {
 public:
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
  float color[3] = {0.0f, 0.0f, 0.0f};
  // The number of the world's trace frame recorded with it (what the
  // references were then); 0 for a point made without one.
  uint64_t frame = 0;
};
