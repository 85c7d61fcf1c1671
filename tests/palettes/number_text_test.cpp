#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "palettes/number_text.h"
#include "tests/case_names.h"

namespace {

struct RealCase {
  const char* text;
  double value;
};

class ReadReal : public testing::TestWithParam<RealCase> {};

TEST_P(ReadReal, TakesTheLeadingNumberOrZero) {
  const double read = readReal(QString::fromUtf8(GetParam().text));
  EXPECT_EQ(read, GetParam().value);
  EXPECT_EQ(std::signbit(read), std::signbit(GetParam().value));
}

constexpr double kInf = std::numeric_limits<double>::infinity();

INSTANTIATE_TEST_SUITE_P(
    Texts, ReadReal,
    testing::Values(RealCase{"12abc", 12.0}, RealCase{"abc", 0.0}, RealCase{"", 0.0},
                    RealCase{"  -3.5e2x", -350.0}, RealCase{"+7", 7.0}, RealCase{".5", 0.5},
                    RealCase{"5.", 5.0}, RealCase{"1e", 1.0}, RealCase{"1e+", 1.0},
                    RealCase{"-0", -0.0}, RealCase{"1e400", kInf}, RealCase{"-1e400", -kInf},
                    RealCase{"1e-400", 0.0}, RealCase{"NaN", 0.0}, RealCase{"inf", 0.0},
                    RealCase{"0x10", 0.0}, RealCase{"1,5", 1.0}, RealCase{"-", 0.0},
                    RealCase{"6.67259e-11", 6.67259e-11}),
    [](const auto& p) { return textCaseName(p.param.text, p); });

struct IntCase {
  const char* text;
  int32_t value;
};

class ReadInt : public testing::TestWithParam<IntCase> {};

TEST_P(ReadInt, TakesTheLeadingIntegerClampedToThirtyTwoBits) {
  EXPECT_EQ(readInt(QString::fromUtf8(GetParam().text)), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, ReadInt,
    testing::Values(IntCase{"42", 42}, IntCase{" -17x", -17}, IntCase{"3.9", 3}, IntCase{"abc", 0},
                    IntCase{"", 0}, IntCase{"1e5", 1},
                    IntCase{"99999999999", std::numeric_limits<int32_t>::max()},
                    IntCase{"-99999999999", std::numeric_limits<int32_t>::min()},
                    IntCase{"999999999999999999999999", std::numeric_limits<int32_t>::max()}),
    [](const auto& p) { return textCaseName(p.param.text, p); });

TEST(FormatReal, PrintsLikePercentG) {
  EXPECT_EQ(formatReal(1e-05), QStringLiteral("1e-05"));
  EXPECT_EQ(formatReal(0.1), QStringLiteral("0.1"));
  EXPECT_EQ(formatReal(123456789.0), QStringLiteral("1.23457e+08"));
  EXPECT_EQ(formatReal(100.0), QStringLiteral("100"));
  EXPECT_EQ(formatReal(-0.0), QStringLiteral("-0"));
  EXPECT_EQ(formatReal(0.009999999776482582), QStringLiteral("0.01"));
  EXPECT_EQ(formatReal(kInf), QStringLiteral("inf"));
}

}  // namespace
