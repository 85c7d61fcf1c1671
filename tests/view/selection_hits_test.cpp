#include "view/selection_hits.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace {

// Hit records: name count, minimum depth, maximum depth, names.
TEST(SelectionHits, HitReachingFarthestWins) {
  const std::vector<uint32_t> records = {1, 10, 50, 100, 1, 20, 90, 101, 1, 5, 60, 102};
  EXPECT_EQ(farthestNamedHit(records.data(), 16, 3), 101u);
}

TEST(SelectionHits, DepthsCompareUnsigned) {
  const std::vector<uint32_t> records = {1, 0x10000000, 0x20000000, 100,
                                         1, 0x80000000, 0xF0000000, 101};
  EXPECT_EQ(farthestNamedHit(records.data(), 16, 2), 101u);
}

TEST(SelectionHits, OnEqualDepthsTheEarlierRecordStays) {
  const std::vector<uint32_t> records = {1, 10, 70, 100, 1, 30, 70, 101};
  EXPECT_EQ(farthestNamedHit(records.data(), 16, 2), 100u);
}

// Lines drawn before the first body leave records with an empty name stack.
TEST(SelectionHits, RecordsWithoutANameAreSkipped) {
  const std::vector<uint32_t> records = {0, 1, 0xFFFFFFFF, 1, 40, 50, 103, 0, 2, 0xFFFFFFFF};
  EXPECT_EQ(farthestNamedHit(records.data(), 16, 3), 103u);
  const std::vector<uint32_t> onlyLines = {0, 1, 2, 0, 3, 4};
  EXPECT_EQ(farthestNamedHit(onlyLines.data(), 16, 2), 0u);
}

TEST(SelectionHits, RecordsAreSteppedByTheirOwnNameCounts) {
  const std::vector<uint32_t> records = {2, 10, 20, 100, 555, 1, 15, 30, 101};
  EXPECT_EQ(farthestNamedHit(records.data(), 16, 2), 101u);
}

TEST(SelectionHits, NoHitOrOverflowSelectsNothing) {
  const std::vector<uint32_t> records = {1, 10, 20, 100};
  EXPECT_EQ(farthestNamedHit(records.data(), 16, 0), 0u);
  EXPECT_EQ(farthestNamedHit(records.data(), 16, -1), 0u);
}

// A hit count or name count that reaches past the buffer stops the reading
// at the last complete record; the exact-size array lets the sanitizer catch
// any read beyond it.
TEST(SelectionHits, NeverReadsPastTheBuffer) {
  std::array<uint32_t, 16> buffer = {1, 10, 20, 100, 1, 10, 40, 101, 1, 10, 30, 102, 1, 5, 90, 103};
  EXPECT_EQ(farthestNamedHit(buffer.data(), 16, 50), 103u);
  buffer[12] = 7;  // the last record claims more names than fit
  EXPECT_EQ(farthestNamedHit(buffer.data(), 16, 50), 101u);
}

}  // namespace
