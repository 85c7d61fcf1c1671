#pragma once

#include <string>
#include <vector>

// The range, ticks and tick labels of one plot axis.
struct AxisTicks {
  double lo = 0.0;
  double hi = 1.0;
  bool logarithmic = false;
  std::vector<double> values;
  std::vector<std::string> labels;
  // Set when the labels are too long to read whole (a quantity that varies
  // in its tenth digit, as a conserved energy does): the labels then give
  // the difference from this value, which the plot shows beside the axis.
  std::string offset;

  // Where a value lies between lo (0) and hi (1); a logarithmic axis places
  // the logarithm. Not a number for a value the axis cannot show.
  double fraction(double value) const;

  // The logarithms (base 2) of lo and hi, set by logAxis.
  double log2Lo = 0.0;
  double log2Hi = 1.0;
};

// The base-2 logarithm of a positive finite value, within 1e-9, in plain
// arithmetic. A plot takes one per sample, and the C library's logarithm can
// cost fifty times more in a Qt program: once Qt has run 256-bit vector code
// without clearing it, every call into the library's AVX code from ordinary
// code pays a state transition (measured: 200 ns a call instead of 4).
double plotLog2(double value);

// How a linear axis meets its values: widened to the ticks around them (a
// value axis), or ending at the first and last value (the time axis, so that
// the curves fill the plot).
enum class AxisEnds { AtTicks, AtValues };

// A linear axis that holds [min, max] (finite, min <= max), with ticks on
// whole steps of 1, 2 or 5 times a power of ten, at most `count` + 1 of
// them. Integer axes (body counts) never step by less than 1. A range too
// narrow to draw is widened around its middle.
AxisTicks linearAxis(double min, double max, int count, bool integers = false,
                     AxisEnds ends = AxisEnds::AtTicks);

// A logarithmic axis that holds [min, max] (both positive and finite),
// widened to whole decades, with at most `count` + 1 ticks on decades.
AxisTicks logAxis(double min, double max, int count);

// A value as a tick label: as short as "%g" gives it, with as many
// significant digits as `step` needs; values within a millionth of a step
// of zero are zero.
std::string tickLabel(double value, double step);
