#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "palettes/graph_history.h"
#include "palettes/plot_axis.h"
#include "tests/case_names.h"

namespace {

GraphSample at(double time, double energyError) {
  GraphSample s;
  s.time = time;
  s[GraphSeries::EnergyError] = energyError;
  return s;
}

// A full store of 8 thins its older half, samples 1 to 4, to the one of
// each pair with the larger energy error (a NaN error never wins); the
// first sample and the newer half stay.
TEST(GraphHistory, ThinningKeepsTheFirstSampleTheNewerHalfAndEachPairsLargerError) {
  GraphHistory h(8);
  const double errors[8] = {0.0, 1e-9, 1e-12, NAN, 1e-14, 0.5, 0.6, 0.7};
  for (int i = 0; i < 8; ++i)
    h.append(at(i, errors[i]));
  h.append(at(8, 0.8));
  EXPECT_EQ(h.times(), (std::vector<double>{0, 1, 4, 5, 6, 7, 8}));

  // However long the run, the store stays bounded, in time order, from the
  // run's start to its newest sample.
  for (int i = 9; i < 5000; ++i) {
    h.append(at(i, 1e-12));
    ASSERT_LE(h.size(), 8u);
  }
  EXPECT_TRUE(std::is_sorted(h.times().begin(), h.times().end()));
  EXPECT_EQ(h.times().front(), 0.0);
  EXPECT_EQ(h.times().back(), 4999.0);
  EXPECT_EQ(h.nearest(4998.6), h.size() - 1);
  EXPECT_EQ(h.nearest(-3.0), 0u);
}

struct LabelCase {
  double value;
  double step;
  const char* label;
};

class TickLabel : public ::testing::TestWithParam<LabelCase> {};

TEST_P(TickLabel, HasTheDigitsItsStepNeeds) {
  EXPECT_EQ(tickLabel(GetParam().value, GetParam().step), GetParam().label);
}

INSTANTIATE_TEST_SUITE_P(
    Values, TickLabel,
    ::testing::Values(LabelCase{0.30000000000000004, 0.1, "0.3"}, LabelCase{1500.0, 500.0, "1500"},
                      LabelCase{-2.5e-7, 5e-8, "-2.5e-07"}, LabelCase{4e6, 1e6, "4e+06"},
                      LabelCase{1e-19, 0.2, "0.0"}, LabelCase{-1e-30, 5e-13, "0"}),
    [](const auto& p) { return textCaseName(p.param.label, p); });

TEST(PlotAxis, LinearAxesTickOnRoundStepsAndIntegersOnWholeNumbers) {
  const AxisTicks a = linearAxis(0.3, 9.2, 5);
  EXPECT_EQ(a.lo, 0.0);
  EXPECT_EQ(a.hi, 10.0);
  EXPECT_EQ(a.labels, (std::vector<std::string>{"0", "2", "4", "6", "8", "10"}));
  // The time axis ends at its first and last values.
  const AxisTicks t = linearAxis(0.3, 9.2, 5, false, AxisEnds::AtValues);
  EXPECT_EQ(t.lo, 0.3);
  EXPECT_EQ(t.labels, (std::vector<std::string>{"2", "4", "6", "8"}));
  EXPECT_DOUBLE_EQ(a.fraction(5.0), 0.5);

  // A constant body count gets an axis one either side.
  const AxisTicks bodies = linearAxis(3.0, 3.0, 6, true);
  EXPECT_EQ(bodies.labels, (std::vector<std::string>{"2", "3", "4"}));
}

// An energy that changes in its tenth digit: the labels give the difference
// from an offset, short enough to read, and the ticks still span the values.
TEST(PlotAxis, ValuesThatDifferFarDownGetAnOffset) {
  const AxisTicks a = linearAxis(-1.28740000071, -1.28740000012, 4);
  EXPECT_FALSE(a.offset.empty());
  EXPECT_LE(a.lo, -1.28740000071);
  EXPECT_GE(a.hi, -1.28740000012);
  for (const std::string& label : a.labels)
    EXPECT_LE(label.size(), 7u) << label;
}

// Its stated accuracy, over the whole range of doubles a plot may meet.
TEST(PlotAxis, PlotLogarithmIsWithinANanoOfTheLibrarys) {
  for (const double x : {4.9e-324, 1e-310, 2.2250738585072014e-308, 1e-15, 0.7071067811865476,
                         0.7071067811865475, 1.0, 1.4142135623730951, 3.0, 1e300, 1.7e308})
    EXPECT_NEAR(plotLog2(x), std::log2(x), 1e-9) << x;
}

TEST(PlotAxis, LogarithmicAxesSpanWholeDecades) {
  const AxisTicks a = logAxis(3e-15, 2e-11, 8);
  EXPECT_EQ(a.lo, 1e-15);
  EXPECT_EQ(a.hi, 1e-10);
  EXPECT_EQ(a.labels.front(), "1e-15");
  EXPECT_EQ(a.labels.back(), "1e-10");
  EXPECT_TRUE(std::isnan(a.fraction(0.0)));
  EXPECT_NEAR(a.fraction(1e-12), 0.6, 1e-12);
}

}  // namespace
