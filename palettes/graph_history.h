#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

// The quantities the Graphs palette plots against elapsed time.
enum class GraphSeries {
  Energy,
  // |E(t) - E(0)| / |E(0)|.
  EnergyError,
  // Magnitude of the total momentum.
  Momentum,
  // Magnitude of the angular momentum about the centre of mass.
  AngularMomentum,
  // |L(t) - L(0)| / |L(0)|.
  AngularMomentumError,
  Bodies,
  // Of the selected body, from the tracked body or the centre of mass.
  Distance,
  Speed,
};
inline constexpr std::size_t kGraphSeriesCount = 8;

// One sample: the elapsed time and every quantity then. A quantity that has
// no value (no body selected, an error relative to zero) is not a number.
struct GraphSample {
  double time = 0.0;
  std::array<double, kGraphSeriesCount> values{};

  double& operator[](GraphSeries s) { return values[static_cast<std::size_t>(s)]; }
  double operator[](GraphSeries s) const { return values[static_cast<std::size_t>(s)]; }
};

// The samples of one run, oldest first, in a bounded store. When it is full,
// the older half is thinned to half as many samples: of each pair of
// neighbours the one with the larger energy error stays, so a brief
// excursion of the error does not vanish from its plot. The newer half keeps
// every sample; the older a stretch of the run, the more often it has been
// thinned, so the store covers the whole run with a resolution that falls
// with age. The very first sample (where the run left design mode) stays.
class GraphHistory {
 public:
  // At the palette's five samples a second, a bit over an hour of samples
  // before the first thinning; about 1.5 MB.
  static constexpr std::size_t kDefaultCapacity = 20000;

  explicit GraphHistory(std::size_t capacity = kDefaultCapacity);

  void append(const GraphSample& sample);
  void clear();

  std::size_t size() const { return times_.size(); }
  bool empty() const { return times_.empty(); }
  std::size_t capacity() const { return capacity_; }
  const std::vector<double>& times() const { return times_; }
  const std::vector<double>& values(GraphSeries s) const {
    return values_[static_cast<std::size_t>(s)];
  }
  // The index of the sample nearest the time; the history must not be empty.
  std::size_t nearest(double time) const;

  // The samples as comma-separated values: a header row naming the columns,
  // then one row per sample, numbers with 17 significant digits (they read
  // back as the same doubles), an empty field where a quantity has none.
  std::string csv() const;

 private:
  void thin();

  std::size_t capacity_;
  std::vector<double> times_;
  std::array<std::vector<double>, kGraphSeriesCount> values_;
};
