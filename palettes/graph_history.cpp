#include "palettes/graph_history.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

constexpr const char* kColumns[kGraphSeriesCount] = {
    "energy", "energy_error", "momentum", "angular_momentum", "angular_momentum_error",
    "bodies", "distance",     "speed"};

void appendNumber(std::string& out, double value) {
  if (std::isnan(value)) {
    return;
  }
  char text[32];
  std::snprintf(text, sizeof text, "%.17g", value);
  out += text;
}

}  // namespace

GraphHistory::GraphHistory(std::size_t capacity) : capacity_(std::max<std::size_t>(capacity, 8)) {}

void GraphHistory::append(const GraphSample& sample) {
  if (times_.size() >= capacity_) {
    thin();
  }
  times_.push_back(sample.time);
  for (std::size_t s = 0; s < kGraphSeriesCount; ++s) {
    values_[s].push_back(sample.values[s]);
  }
}

void GraphHistory::clear() {
  times_.clear();
  for (std::vector<double>& v : values_) {
    v.clear();
  }
}

void GraphHistory::thin() {
  const std::vector<double>& error = values(GraphSeries::EnergyError);
  // Pairs (1, 2), (3, 4), ... of the older half; sample 0 stays as it is.
  const std::size_t end = 1 + (times_.size() / 2) / 2 * 2;
  std::size_t kept = 1;
  for (std::size_t i = 1; i < times_.size(); ++kept) {
    std::size_t from = i;
    if (i < end) {
      // A NaN error never wins, so a pair with one real error keeps it.
      from = error[i + 1] > error[i] || std::isnan(error[i]) ? i + 1 : i;
      i += 2;
    } else {
      ++i;
    }
    times_[kept] = times_[from];
    for (std::vector<double>& v : values_) {
      v[kept] = v[from];
    }
  }
  times_.resize(kept);
  for (std::vector<double>& v : values_) {
    v.resize(kept);
  }
}

std::size_t GraphHistory::nearest(double time) const {
  const auto after = std::lower_bound(times_.begin(), times_.end(), time);
  if (after == times_.end()) {
    return times_.size() - 1;
  }
  const auto i = static_cast<std::size_t>(after - times_.begin());
  return i > 0 && time - times_[i - 1] < *after - time ? i - 1 : i;
}

std::string GraphHistory::csv() const {
  std::string out = "time";
  for (const char* column : kColumns) {
    out += ',';
    out += column;
  }
  out += '\n';
  for (std::size_t i = 0; i < times_.size(); ++i) {
    appendNumber(out, times_[i]);
    for (const std::vector<double>& v : values_) {
      out += ',';
      appendNumber(out, v[i]);
    }
    out += '\n';
  }
  return out;
}
