#include "view/selection_hits.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace {

struct HitCase {
  const char* name;
  std::vector<uint32_t> records;  // name count, minimum depth, maximum depth, names
  int hits;
  uint32_t selected;
};

class SelectionHits : public ::testing::TestWithParam<HitCase> {};

TEST_P(SelectionHits, NamedHitReachingFarthestIsSelected) {
  EXPECT_EQ(farthestNamedHit(GetParam().records.data(), 16, GetParam().hits), GetParam().selected);
}

INSTANTIATE_TEST_SUITE_P(
    Records, SelectionHits,
    ::testing::Values(
        HitCase{"FarthestWins", {1, 10, 50, 100, 1, 20, 90, 101, 1, 5, 60, 102}, 3, 101},
        HitCase{"DepthsCompareUnsigned",
                {1, 0x10000000, 0x20000000, 100, 1, 0x80000000, 0xF0000000, 101},
                2,
                101},
        HitCase{"EarlierStaysOnEqualDepths", {1, 10, 70, 100, 1, 30, 70, 101}, 2, 100},
        // Lines drawn before the first body leave records with no name.
        HitCase{"UnnamedSkipped", {0, 1, 0xFFFFFFFF, 1, 40, 50, 103, 0, 2, 0xFFFFFFFF}, 3, 103},
        HitCase{"OnlyUnnamed", {0, 1, 2, 0, 3, 4}, 2, 0},
        HitCase{"SteppedByTheirOwnNameCounts", {2, 10, 20, 100, 555, 1, 15, 30, 101}, 2, 101},
        HitCase{"NoHit", {1, 10, 20, 100}, 0, 0}, HitCase{"Overflow", {1, 10, 20, 100}, -1, 0}),
    [](const auto& p) { return std::string(p.param.name); });

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
