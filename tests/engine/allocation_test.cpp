// A step allocates nothing per body pair: the count of heap allocations per
// step must not grow with the number of pairs. This binary replaces the
// global operator new to count, so it is kept apart from the other tests.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

#include "test_support.h"

namespace {
std::atomic<long> gAllocations{0};
}

void* operator new(std::size_t size) {
  ++gAllocations;
  if (void* p = std::malloc(size == 0 ? 1 : size)) {
    return p;
  }
  throw std::bad_alloc();
}

void operator delete(void* p) noexcept {
  std::free(p);
}
void operator delete(void* p, std::size_t) noexcept {
  std::free(p);
}

namespace {

long allocationsPerStep(int n) {
  World world;
  world.gravitationalConstant = 1e-3;
  for (int i = 0; i < n; ++i) {
    addBody(world, vec(3.0 * i, (i % 3) * 2.5, 0), vec(0, 0.01, 0), 1.0, 0.01);
  }
  world.step();
  const long before = gAllocations.load();
  world.step();
  return gAllocations.load() - before;
}

TEST(Allocation, AStepAllocatesNothingPerPair) {
  EXPECT_EQ(allocationsPerStep(4), allocationsPerStep(200));
}

}  // namespace
