#include "path_predictor.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <unordered_map>

#include <sys/resource.h>
#include <unistd.h>

#include "engine/body_fields.h"
#include "engine/world.h"
#include "engine/world_fields.h"

namespace {

// Samples kept for all paths together, so that drawing them stays cheap
// whatever the number of bodies, and the bounds on one path.
constexpr std::size_t kTotalSamples = 30000;
constexpr std::size_t kMinSamplesPerPath = 16;
constexpr std::size_t kMaxSamplesPerPath = 1000;
// How often the worker hands what it has to the main thread: often enough
// that paths grow smoothly, seldom enough to cost the main thread nothing.
constexpr std::chrono::milliseconds kPublishInterval{40};
// The worker's nice value, well below the window's threads.
constexpr int kWorkerNice = 10;

// Lets a long adaptive step end as soon as its prediction is stale.
class StaleWatch : public StepMonitor {
 public:
  StaleWatch(const std::atomic<uint64_t>& generation, uint64_t mine)
      : generation_(generation), mine_(mine) {}
  bool keepGoing(const StepProgress& /*progress*/) override { return current(); }
  bool current() const { return generation_.load() == mine_; }

 private:
  const std::atomic<uint64_t>& generation_;
  uint64_t mine_;
};

}  // namespace

// Samples of one prediction in the order they were taken.
struct PathPredictor::Chunk {
  uint64_t generation = 0;
  std::vector<int64_t> steps;
  std::vector<double> times;
  // Per path, in the order of the motion's bodies.
  std::vector<std::vector<Vector>> points;
  bool complete = false;
};

std::size_t PredictedPaths::samplesUntil(double t) const {
  return static_cast<std::size_t>(std::upper_bound(times.begin(), times.end(), t) - times.begin());
}

PathPredictor::PathPredictor(QObject* parent) : QObject(parent) {}

PathPredictor::~PathPredictor() {
  {
    std::lock_guard lock(mutex_);
    stop_ = true;
  }
  ++generation_;
  wake_.notify_one();
  if (worker_.joinable()) {
    worker_.join();
  }
}

void PathPredictor::setEnabled(bool enabled) {
  if (enabled == enabled_) {
    return;
  }
  enabled_ = enabled;
  if (!enabled) {
    // The worker stops at its next step; anything it still sends is stale.
    ++generation_;
    std::lock_guard lock(mutex_);
    pending_.reset();
    current_.reset();
    requested_ = 0.0;
  }
}

void PathPredictor::takeMotion(const World& world, Motion& motion) {
  motion.world.clear();
  appendFields(worldFields(), kChangesMotion, motion.world, world);
  motion.ids.clear();
  motion.bodies.clear();
  forEachItem<Body>(*world.bodies, [&](const Body& b) {
    motion.ids.push_back(b.id);
    appendFields(bodyFields(), kChangesMotion, motion.bodies, b);
  });
}

bool PathPredictor::sameMotion(const Motion& a, const Motion& b) {
  return a.ids == b.ids && sameFields(a.world, b.world) && sameFields(a.bodies, b.bodies);
}

const PredictedPaths* PathPredictor::paths(const World& world, double horizon) {
  if (!enabled_) {
    return nullptr;
  }
  requested_ = std::max(requested_, horizon);
  takeMotion(world, scratch_);
  if (!current_ || !sameMotion(scratch_, currentMotion_)) {
    std::swap(currentMotion_, scratch_);
    restart(requested_);
  } else if (horizon > current_->horizon) {
    restart(requested_);
  }
  return &*current_;
}

void PathPredictor::restart(double horizon) {
  const uint64_t generation = ++generation_;
  current_.emplace();
  current_->horizon = horizon;
  for (const int32_t id : currentMotion_.ids) {
    current_->paths.push_back({id, {}});
  }
  // The horizons asked for from now on decide the next restart's.
  requested_ = 0.0;
  {
    std::lock_guard lock(mutex_);
    pending_ = Job{generation, currentMotion_, horizon};
  }
  wake_.notify_one();
  if (!worker_.joinable()) {
    worker_ = std::thread(&PathPredictor::workerLoop, this);
  }
  emit pathsChanged();
}

void PathPredictor::workerLoop() {
  // Looking ahead must never slow the window down: on a busy machine the
  // worker yields to the main thread and the renderer's threads. Linux
  // gives each thread its own nice value.
  setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), kWorkerNice);
  for (;;) {
    Job job;
    {
      std::unique_lock lock(mutex_);
      wake_.wait(lock, [this] { return stop_ || pending_.has_value(); });
      if (stop_) {
        return;
      }
      job = std::move(*pending_);
      pending_.reset();
    }
    compute(job);
  }
}

void PathPredictor::compute(const Job& job) {
  // A world of the worker's own: bodies made on this thread tell no one.
  World world;
  const Motion& m = job.motion;
  writeAppendedFields(worldFields(), kChangesMotion, m.world, 0, world);
  std::unordered_map<int32_t, std::size_t> pathOf;
  std::size_t next = 0;
  for (const int32_t id : m.ids) {
    Body* body = world.insertBody(id, world.bodies->count());
    next = writeAppendedFields(bodyFields(), kChangesMotion, m.bodies, next, *body);
    pathOf.emplace(id, pathOf.size());
  }

  // Every stride-th step is kept, and the last, so that no path holds more
  // than its share of the samples.
  const std::size_t perPath = std::clamp(kTotalSamples / std::max<std::size_t>(1, m.ids.size()),
                                         kMinSamplesPerPath, kMaxSamplesPerPath);
  const double wanted = job.horizon / world.timeStep;
  const auto totalSteps = static_cast<int64_t>(
      std::isfinite(wanted) && wanted > 0.0 ? std::min(std::ceil(wanted), double{kMaxSteps}) : 0.0);
  const int64_t stride = std::max<int64_t>(
      1, (totalSteps + static_cast<int64_t>(perPath) - 1) / static_cast<int64_t>(perPath));

  StaleWatch watch(generation_, job.generation);
  auto chunk = std::make_shared<Chunk>();
  const auto sample = [&](int64_t step) {
    if (chunk->points.empty()) {
      chunk->points.resize(pathOf.size());
    }
    chunk->steps.push_back(step);
    chunk->times.push_back(world.elapsedTime);
    forEachItem<Body>(*world.bodies, [&](const Body& b) {
      if (const auto at = pathOf.find(b.id); at != pathOf.end()) {
        chunk->points[at->second].push_back(b.position);
      }
    });
  };
  auto lastPublish = std::chrono::steady_clock::now();
  const auto publish = [&] {
    chunk->generation = job.generation;
    QMetaObject::invokeMethod(
        this, [this, chunk] { receive(chunk); }, Qt::QueuedConnection);
    chunk = std::make_shared<Chunk>();
    lastPublish = std::chrono::steady_clock::now();
  };

  sample(0);
  for (int64_t step = 1; step <= totalSteps; ++step) {
    if (!watch.current() || !world.step(&watch)) {
      return;
    }
    ++stepsComputed_;
    const bool last = step == totalSteps || world.elapsedTime >= job.horizon;
    if (step % stride == 0 || last) {
      sample(step);
    }
    if (last) {
      break;
    }
    if (std::chrono::steady_clock::now() - lastPublish >= kPublishInterval) {
      publish();
    }
  }
  chunk->complete = true;
  publish();
}

void PathPredictor::receive(const std::shared_ptr<Chunk>& chunk) {
  if (!current_ || chunk->generation != generation_.load()) {
    return;
  }
  PredictedPaths& p = *current_;
  p.steps.insert(p.steps.end(), chunk->steps.begin(), chunk->steps.end());
  p.times.insert(p.times.end(), chunk->times.begin(), chunk->times.end());
  for (std::size_t i = 0; i < chunk->points.size() && i < p.paths.size(); ++i) {
    std::vector<Vector>& points = p.paths[i].points;
    points.insert(points.end(), chunk->points[i].begin(), chunk->points[i].end());
  }
  p.complete = chunk->complete;
  emit pathsChanged();
}
