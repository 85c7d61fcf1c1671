#include <gtest/gtest.h>

#include <tuple>

#include "engine/quaternion.h"
#include "tests/case_names.h"

namespace {

void expectQuaternion(const Quaternion& q, double w, double x, double y, double z) {
  EXPECT_EQ(std::tuple(q.w, q.v.x, q.v.y, q.v.z), std::tuple(w, x, y, z));
}

// A quaternion within 1e-12 of zero, the default one included, normalises
// to the identity.
TEST(Quaternion, NormalisingGuardsTheZeroQuaternion) {
  Quaternion zero, tiny(1e-13, 0, 0, 0), q(0, 3, 0, 4);
  for (Quaternion* p : {&zero, &tiny, &q})
    p->normalize();
  expectQuaternion(zero, 1, 0, 0, 0);
  expectQuaternion(tiny, 1, 0, 0, 0);
  expectQuaternion(q, 0, 0.6, 0, 0.8);
}

TEST(Quaternion, HamiltonProductOfUnitAxes) {
  const Quaternion i(0, 1, 0, 0), j(0, 0, 1, 0), k(0, 0, 0, 1);
  expectQuaternion(i * j, 0, 0, 0, 1);
  expectQuaternion(j * i, 0, 0, 0, -1);
  expectQuaternion(i * i, -1, 0, 0, 0);
  Quaternion a = j;
  a *= k;
  expectQuaternion(a, 0, 1, 0, 0);
}

TEST(Quaternion, ScalarDivisionIsGuarded) {
  expectQuaternion(Quaternion(2, 4, 6, 8) / 2.0, 1, 2, 3, 4);
  expectQuaternion(Quaternion(2, 4, 6, 8) / 1e-12, 0, 0, 0, 0);
  Quaternion q(2, 4, 6, 8);
  q /= 0.0;
  expectQuaternion(q, 0, 0, 0, 0);
}

class QuaternionAngles : public ::testing::TestWithParam<std::tuple<double, double, double>> {};

TEST_P(QuaternionAngles, RollPitchYawRoundTripsInsideThePrincipalRanges) {
  const auto [roll, pitch, yaw] = GetParam();
  const Quaternion q(roll, pitch, yaw);
  EXPECT_NEAR(q.norm(), 1.0, 4e-16);  // a few ulps: the result is unit length by construction
  const Vector a = q.toRollPitchYaw();
  // atan2/asin of products of rounded sines and cosines: within 1e-12 rad.
  EXPECT_NEAR(a.x, roll, 1e-12);
  EXPECT_NEAR(a.y, pitch, 1e-12);
  EXPECT_NEAR(a.z, yaw, 1e-12);
}

INSTANTIATE_TEST_SUITE_P(Angles, QuaternionAngles,
                         ::testing::Values(std::make_tuple(0.5236, 0.0, 0.0),
                                           std::make_tuple(0.0, 1.2, 0.0),
                                           std::make_tuple(0.0, 0.0, -2.9),
                                           std::make_tuple(-3.0, -1.5, 3.0),
                                           std::make_tuple(1.0, 0.7, -0.3)),
                         caseNames({"Roll", "Pitch", "Yaw", "AllNearTheLimits", "AllSmall"}));

// Zero angles give exactly the identity and back; the identity and the zero
// quaternion give the identity matrix.
TEST(Quaternion, ZeroAnglesIdentityAndZeroQuaternionAreExactlyTheIdentity) {
  Quaternion q;
  q.setRollPitchYaw(0, 0, 0);
  expectQuaternion(q, 1, 0, 0, 0);
  const Vector a = Quaternion(1, 0, 0, 0).toRollPitchYaw();
  EXPECT_EQ(std::tuple(a.x, a.y, a.z), std::tuple(0.0, 0.0, 0.0));
  for (const Quaternion& p : {Quaternion(1, 0, 0, 0), Quaternion()}) {
    const auto m = p.toGLMatrix();
    for (int i = 0; i < 16; ++i) {
      EXPECT_EQ(m[i], (i % 5 == 0) ? 1.0 : 0.0) << i;
    }
  }
}

}  // namespace
