#include "view/grid_lattice.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>

namespace {

void expectRange(const GridLattice& g, int axis, int first, int last) {
  EXPECT_EQ(g.first[axis], first) << "axis " << axis;
  EXPECT_EQ(g.last[axis], last) << "axis " << axis;
}

// The spacing is used by its integer part.
TEST(GridLattice, EmptyWorldHasThreeValuesPerAxis) {
  const auto g = gridLattice(100.9, Vector(), Vector());
  ASSERT_TRUE(g.has_value());
  for (int a = 0; a < 3; ++a) {
    expectRange(*g, a, -1, 1);
  }
  EXPECT_EQ(g->spacing, 100);
  EXPECT_EQ(std::pair(g->lo.x, g->hi.z), std::pair(-100.0, 100.0));
  EXPECT_EQ(g->lineCount(), 27);
}

// The box (150, -100, -100) to (350, 100, 100) holds the x values 100, 200
// and 300: trunc(150)/100 = 1 and trunc(350)/100 = 3.
TEST(GridLattice, BodyAwayFromOriginShiftsTheBoxAndTruncatesTowardsZero) {
  const Vector body = Vector::of(250, 0, 0);
  const auto g = gridLattice(100.0, body, body);
  ASSERT_TRUE(g.has_value());
  EXPECT_EQ(std::pair(g->lo.x, g->hi.x), std::pair(150.0, 350.0));
  expectRange(*g, 0, 1, 3);
  expectRange(*g, 1, -1, 1);
  expectRange(*g, 2, -1, 1);

  const Vector mirrored = Vector::of(-250, 0, 0);
  const auto m = gridLattice(100.0, mirrored, mirrored);
  ASSERT_TRUE(m.has_value());
  expectRange(*m, 0, -3, -1);
}

struct SkipCase {
  const char* name;
  double spacing;
  Vector min;
  Vector max;
};

class GridLatticeSkip : public ::testing::TestWithParam<SkipCase> {};

TEST_P(GridLatticeSkip, IsSkippedRatherThanStallingTheFrame) {
  const SkipCase c = GetParam();
  EXPECT_FALSE(gridLattice(c.spacing, c.min, c.max).has_value());
}

// Spacings below one unit, NaNs, bodies beyond 32 bits.
INSTANTIATE_TEST_SUITE_P(
    Cases, GridLatticeSkip,
    ::testing::Values(SkipCase{"ZeroSpacing", 0.0, Vector(), Vector()},
                      SkipCase{"NegativeSpacing", -100.0, Vector(), Vector()},
                      SkipCase{"NaNSpacing", std::nan(""), Vector(), Vector()},
                      SkipCase{"HugeSpacing", 1e300, Vector(), Vector()},
                      SkipCase{"HalfUnitSpacing", 0.5, Vector(), Vector()},
                      SkipCase{"TinySpacing", 1e-9, Vector(), Vector()},
                      SkipCase{"BodyAt1e12", 100.0, Vector(), Vector::of(1e12, 0, 0)},
                      SkipCase{"NaNPosition", 100.0, Vector(), Vector::of(0, std::nan(""), 0)}),
    [](const auto& p) { return std::string(p.param.name); });

TEST(GridLattice, LargestAllowedLatticeIsStillDrawn) {
  // 31 values per axis: 3 * 31 * 31 = 2883 lines; 32 values make 3072.
  const auto g = gridLattice(1.0, Vector(-14.0), Vector(14.0));
  ASSERT_TRUE(g.has_value());
  EXPECT_EQ(g->lineCount(), 2883);
  EXPECT_FALSE(gridLattice(1.0, Vector(-14.0), Vector(15.0)).has_value());
}

}  // namespace
