#pragma once

#include <QObject>
#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "engine/field_table.h"
#include "engine/vector.h"

class World;

// Where the bodies of a world will go. Sample k is the state after steps[k]
// steps of the world, times[k] units of simulated time from now; sample 0 is
// the world as it stands. Each body's path has one point per sample for as
// long as the body exists (a body merged away in a collision ends early).
struct PredictedPaths {
  struct Path {
    int32_t id = 0;
    std::vector<Vector> points;
  };

  // How many samples lie at or before time t.
  std::size_t samplesUntil(double t) const;

  std::vector<int64_t> steps;
  std::vector<double> times;
  std::vector<Path> paths;
  // The time the computation aims for, and whether it got there (or to its
  // bound on the number of steps).
  double horizon = 0.0;
  bool complete = false;
};

// Computes predicted paths on a worker thread of its own. The application's
// world is only read on the calling (main) thread, to take a copy of what
// moves the bodies; the worker builds and steps a world of its own from that
// copy with the engine's own step, so the path is exactly where a run of the
// world goes. Every change of the world restarts the work, and whatever the
// worker sends for an earlier state is dropped. Samples reach the main
// thread in small pieces through its event loop, so it never waits for the
// worker.
class PathPredictor : public QObject {
  Q_OBJECT

 public:
  // Bound on the steps of one prediction, whatever the horizon asks.
  static constexpr int64_t kMaxSteps = 200000;

  explicit PathPredictor(QObject* parent = nullptr);
  ~PathPredictor() override;
  PathPredictor(const PathPredictor&) = delete;
  PathPredictor& operator=(const PathPredictor&) = delete;

  // Predictions run only while enabled; disabling drops the results and
  // stops the worker at its next step.
  void setEnabled(bool enabled);
  bool enabled() const { return enabled_; }

  // The paths of the world as it stands, as far as they are computed, for
  // at least `horizon` units of simulated time. Restarts the computation
  // when anything that moves the bodies has changed since it began, or the
  // horizon is longer than the one it aims for. Null while disabled.
  const PredictedPaths* paths(const World& world, double horizon);

  // Steps the worker has taken since construction.
  int64_t stepsComputed() const { return stepsComputed_.load(); }

 signals:
  // More samples arrived, or the prediction started again.
  void pathsChanged();

 private:
  // What moves the bodies: the world's fields that change the motion, then
  // each body's identifier and its fields that do, in list order.
  struct Motion {
    FieldValues world;
    std::vector<int32_t> ids;
    FieldValues bodies;
  };
  struct Job {
    uint64_t generation = 0;
    Motion motion;
    double horizon = 0.0;
  };
  struct Chunk;

  static void takeMotion(const World& world, Motion& motion);
  static bool sameMotion(const Motion& a, const Motion& b);
  void restart(double horizon);
  void workerLoop();
  void compute(const Job& job);
  void receive(const std::shared_ptr<Chunk>& chunk);

  bool enabled_ = false;
  // The prediction under way or done, its motion and the longest horizon
  // asked for since it began.
  std::optional<PredictedPaths> current_;
  Motion currentMotion_;
  Motion scratch_;
  double requested_ = 0.0;

  std::atomic<uint64_t> generation_{0};
  std::atomic<int64_t> stepsComputed_{0};
  std::mutex mutex_;
  std::condition_variable wake_;
  std::optional<Job> pending_;
  bool stop_ = false;
  std::thread worker_;
};
