#include "selection_hits.h"

#include <cstddef>

uint32_t farthestNamedHit(const uint32_t* buffer, int bufferWords, int hits) {
  uint32_t result = 0;
  uint32_t best = 0;
  bool found = false;
  std::size_t at = 0;
  const auto size = static_cast<std::size_t>(bufferWords > 0 ? bufferWords : 0);
  for (int r = 0; r < hits; ++r) {
    // A record is the name count, the minimum and maximum depth, then the
    // names; a record cut off by the end of the buffer is not used.
    if (at + 3 > size) {
      break;
    }
    const std::size_t count = buffer[at];
    if (count > size - at - 3) {
      break;
    }
    const uint32_t minDepth = buffer[at + 1];
    const uint32_t maxDepth = buffer[at + 2];
    if (count > 0) {
      // Bodies are drawn with their identifier as the only name on the stack.
      const uint32_t name = buffer[at + 3];
      if (!found) {
        found = true;
        best = minDepth;
        result = name;
      }
      if (maxDepth > best) {
        result = name;
        best = maxDepth;
      }
    }
    at += 3 + count;
  }
  return result;
}
