#include "palettes/plot_axis.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>

namespace {

// Below this relative spread a quantity is drawn as a flat line: a double
// holds about 16 digits, and the error plots show finer changes.
constexpr double kFlatSpread = 1e-12;

// Labels longer than this many significant digits are shown as differences
// from an offset.
constexpr int kReadableDigits = 6;

int decade(double value) {
  return static_cast<int>(std::floor(std::log10(std::fabs(value))));
}

std::string printed(const char* format, int precision, double value) {
  char text[64];
  std::snprintf(text, sizeof text, format, precision, value);
  return text;
}

// 1, 2 or 5 times a power of ten, the smallest not below raw.
double niceStep(double raw) {
  const double magnitude = std::pow(10.0, std::floor(std::log10(raw)));
  const double m = raw / magnitude;
  return (m <= 1.0 ? 1.0 : m <= 2.0 ? 2.0 : m <= 5.0 ? 5.0 : 10.0) * magnitude;
}

}  // namespace

double plotLog2(double value) {
  // value = m * 2^e with m in [sqrt(1/2), sqrt(2)); subnormals are scaled
  // into the normal range first.
  int e = 0;
  if (value < 0x1p-1022) {
    value *= 0x1p54;
    e = -54;
  }
  const auto bits = std::bit_cast<uint64_t>(value);
  e += static_cast<int>(bits >> 52) - 1023;
  double m = std::bit_cast<double>((bits & 0x000fffffffffffffu) | 0x3ff0000000000000u);
  if (m > 1.4142135623730951) {
    m /= 2.0;
    ++e;
  }
  // ln m = 2 atanh(s) = 2 (s + s^3/3 + s^5/5 + ...), s = (m - 1) / (m + 1),
  // |s| <= 0.172: the terms after s^11/11 add less than 1e-10 to log2.
  const double s = (m - 1.0) / (m + 1.0);
  const double s2 = s * s;
  const double series =
      s * (1.0 + s2 * (1.0 / 3 + s2 * (1.0 / 5 + s2 * (1.0 / 7 + s2 * (1.0 / 9 + s2 / 11)))));
  return e + 2.0 * series / 0.6931471805599453;
}

double AxisTicks::fraction(double value) const {
  if (!std::isfinite(value)) {
    return std::numeric_limits<double>::quiet_NaN();
  }
  if (logarithmic) {
    if (!(value > 0.0)) {
      return std::numeric_limits<double>::quiet_NaN();
    }
    return (plotLog2(value) - log2Lo) / (log2Hi - log2Lo);
  }
  return (value - lo) / (hi - lo);
}

std::string tickLabel(double value, double step) {
  const bool zero = std::fabs(value) < step * 1e-6;
  const int exponent = zero ? decade(step) : decade(value);
  // Plain decimals while they stay short (as "%g" would), with the decimals
  // the step needs; exponent notation beyond.
  if (exponent >= -4 && exponent < kReadableDigits) {
    return printed("%.*f", std::max(0, -decade(step)), zero ? 0.0 : value);
  }
  if (zero) {
    return "0";
  }
  return printed("%.*g", std::clamp(exponent - decade(step) + 1, 1, 17), value);
}

AxisTicks linearAxis(double min, double max, int count, bool integers, AxisEnds ends) {
  const double magnitude = std::max(std::fabs(min), std::fabs(max));
  const double flat = magnitude > 0.0 ? magnitude * kFlatSpread : 1.0;
  if (max - min < flat) {
    const double middle = min / 2.0 + max / 2.0;
    const double half = integers ? 1.0 : std::max(flat, magnitude * 1e-3) / 2.0;
    min = middle - half;
    max = middle + half;
  }
  double step = niceStep((max - min) / std::max(count, 1));
  if (integers) {
    step = std::max(step, 1.0);
  }
  const bool atTicks = ends == AxisEnds::AtTicks;
  const double first = atTicks ? std::floor(min / step) : std::ceil(min / step);
  const double last = atTicks ? std::ceil(max / step) : std::floor(max / step);
  AxisTicks axis;
  axis.lo = atTicks ? first * step : min;
  axis.hi = atTicks ? last * step : max;
  const int ticks = static_cast<int>(last - first);
  const int needed = decade(std::max(std::fabs(axis.lo), std::fabs(axis.hi))) - decade(step) + 1;
  // A range narrower than a step holds no tick when it ends at its values.
  if (ticks < 0) {
    return axis;
  }
  const int middle = ticks / 2;
  if (needed > kReadableDigits) {
    axis.offset = printed("%.*g", std::min(needed, 17), (first + middle) * step);
  }
  for (int i = 0; i <= ticks; ++i) {
    const double value = (first + i) * step;
    axis.values.push_back(value);
    if (axis.offset.empty()) {
      axis.labels.push_back(tickLabel(value, step));
    } else {
      const std::string difference = tickLabel((i - middle) * step, step);
      axis.labels.push_back(i > middle ? "+" + difference : difference);
    }
  }
  return axis;
}

AxisTicks logAxis(double min, double max, int count) {
  int first = decade(min);
  int last = static_cast<int>(std::ceil(std::log10(max)));
  if (last <= first) {
    --first;
    ++last;
  }
  const int stride = std::max(1, (last - first + count - 1) / std::max(count, 1));
  AxisTicks axis;
  axis.logarithmic = true;
  axis.lo = std::pow(10.0, first);
  axis.hi = std::pow(10.0, last);
  axis.log2Lo = plotLog2(axis.lo);
  axis.log2Hi = plotLog2(axis.hi);
  for (int k = first; k <= last; k += stride) {
    const double value = std::pow(10.0, k);
    axis.values.push_back(value);
    axis.labels.push_back(std::abs(k) < 3 ? printed("%.*g", 3, value) : "1e" + std::to_string(k));
  }
  return axis;
}
