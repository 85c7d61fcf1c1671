#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "engine/vector.h"
#include "test_support.h"
#include "tests/case_names.h"

namespace {

void expectVector(const Vector& v, double x, double y, double z) {
  EXPECT_EQ(v.x, x);
  EXPECT_EQ(v.y, y);
  EXPECT_EQ(v.z, z);
}

const double kNaN = std::numeric_limits<double>::quiet_NaN();

struct NormalizeCase {
  Vector in;
  Vector out;
};

class VectorNormalized : public ::testing::TestWithParam<NormalizeCase> {};

TEST_P(VectorNormalized, ComparesTheLengthNotItsSquareWithTheTolerance) {
  expectVector(normalized(GetParam().in), GetParam().out.x, GetParam().out.y, GetParam().out.z);
}

INSTANTIATE_TEST_SUITE_P(Cases, VectorNormalized,
                         ::testing::Values(NormalizeCase{vec(0, 0, 0), vec(0, 0, 0)},
                                           NormalizeCase{vec(1e-13, 0, 0), vec(0, 0, 0)},
                                           NormalizeCase{vec(0, 0, 1e-12), vec(0, 0, 0)},
                                           NormalizeCase{vec(0, 0, 2e-12), vec(0, 0, 1)},
                                           NormalizeCase{vec(0, -3, 4), vec(0, -0.6, 0.8)},
                                           NormalizeCase{vec(kNaN, 1, 1), vec(0, 0, 0)}),
                         caseNames({"Zero", "BelowTolerance", "AtTolerance", "AboveTolerance",
                                    "Ordinary", "NotANumber"}));

TEST(Vector, IsZeroUsesStrictComparisonsPerComponent) {
  EXPECT_FALSE(vec(1e-12, 0, 0).isZero());
  EXPECT_TRUE(vec(9e-13, -9e-13, 0).isZero());
  EXPECT_FALSE(vec(0, 0, -2e-12).isZero());
}

// Dividing by at most 1e-12 (or by a NaN, which fails the comparison) gives
// the zero vector, but leaves the vector as it was in place.
TEST(Vector, GuardedDivisionsDifferBetweenReturningAndInPlace) {
  for (double d : {1e-12, kNaN}) {
    expectVector(vec(3, 6, 9) / d, 0, 0, 0);
    Vector v = vec(3, 6, 9);
    v /= d;
    expectVector(v, 3, 6, 9);
  }
  expectVector(vec(3, 6, 9) / 3.0, 1, 2, 3);
  Vector v = vec(3, 6, 9);
  v /= 3.0;
  expectVector(v, 1, 2, 3);
}

}  // namespace
