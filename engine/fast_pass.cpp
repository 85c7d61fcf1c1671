#include "fast_pass.h"

#include <algorithm>
#include <cassert>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <thread>

#include "body.h"
#include "distributed_passes.h"
#include "linked_list.h"

namespace {
// Below this many bodies a second thread costs more in hand-over than it
// saves: one pass takes well under a hundred microseconds there.
constexpr int kThreadThreshold = 500;
// Bodies per block of the threaded schedule: a tile of 64 x 64 pairs is a
// few microseconds of work, long enough to hide the hand-over of a block
// between cores, short enough to keep both threads busy to the end.
constexpr int kBlockSize = 64;
constexpr int kMaxThreads = 64;
// The automatic choice measures: a threaded force pass that is not clearly
// faster per pair than recent one-thread passes (a helper that lost its core
// to another process stalls the whole pass, often for many milliseconds)
// sends the next passes back to one thread: 64 at first, twice as many after
// each further failure, up to 4096 (a few seconds of steps). A stall costs
// far more than a threaded pass gains, so the pause shrinks again only after
// a long run of threaded passes that paid.
constexpr double kWorthwhile = 0.9;
constexpr int kFirstBackoff = 64;
constexpr int kMaxBackoff = 4096;
constexpr int kSuccessesToShrink = 64;
// A collision test on several threads whose caller waited this long for a
// helper, and longer than a third of the test, counts as a failure too.
constexpr int64_t kStallNs = 100'000;
constexpr int kChunksPerThread = 8;
// Blocks of the force pass handed to separate processes start at multiples
// of the widest kernels' lanes, so that no vector of one block reaches into
// the rows of another.
constexpr int kBlockAlignment = 8;

bool processorHas(KernelPath path) {
#if defined(__x86_64__)
  switch (path) {
    case KernelPath::Reference:
    case KernelPath::Sse2:
      return true;
    case KernelPath::Avx2:
      return __builtin_cpu_supports("avx2");
    case KernelPath::Avx512:
      return __builtin_cpu_supports("avx512f");
  }
  return false;
#else
  return path == KernelPath::Reference;
#endif
}

KernelPath fastestPath() {
  for (KernelPath p : {KernelPath::Avx512, KernelPath::Avx2, KernelPath::Sse2}) {
    if (processorHas(p)) {
      return p;
    }
  }
  return KernelPath::Reference;
}

// ORRENVALE_SIMD names a path; an unknown or unsupported name leaves the
// fastest path, since every path gives the same results.
KernelPath initialPath() {
  const char* env = std::getenv("ORRENVALE_SIMD");
  if (env == nullptr) {
    return fastestPath();
  }
  const std::string_view name(env);
  KernelPath wanted = fastestPath();
  if (name == "reference") {
    wanted = KernelPath::Reference;
  } else if (name == "plain" || name == "sse2") {
    wanted = KernelPath::Sse2;
  } else if (name == "avx2") {
    wanted = KernelPath::Avx2;
  } else if (name == "avx512") {
    wanted = KernelPath::Avx512;
  }
  return processorHas(wanted) ? wanted : fastestPath();
}

// ORRENVALE_THREADS forces a thread count; anything but a number from 1 to
// 64 leaves the automatic choice.
int initialThreads() {
  const char* env = std::getenv("ORRENVALE_THREADS");
  if (env == nullptr) {
    return 0;
  }
  char* end = nullptr;
  const long n = std::strtol(env, &end, 10);
  return (end != env && *end == '\0' && n >= 1 && n <= kMaxThreads) ? static_cast<int>(n) : 0;
}
}  // namespace

KernelPath fastestKernelPath() {
  return fastestPath();
}
bool kernelPathSupported(KernelPath path) {
  return processorHas(path);
}
const char* kernelPathName(KernelPath path) {
  switch (path) {
    case KernelPath::Reference:
      return "reference";
    case KernelPath::Sse2:
      return "sse2";
    case KernelPath::Avx2:
      return "avx2";
    case KernelPath::Avx512:
      return "avx512";
  }
  return "reference";
}

FastPass::FastPass() : path_(initialPath()), forcedThreads_(initialThreads()) {
  const unsigned cores = std::thread::hardware_concurrency();
  automaticThreads_ = std::clamp(static_cast<int>(cores), 1, 8);
  backoff_ = kFirstBackoff;
}

FastPass::~FastPass() = default;

bool FastPass::setPath(KernelPath path) {
  if (!processorHas(path)) {
    return false;
  }
  path_ = path;
  return true;
}

void FastPass::setForcedThreads(int threads) {
  forcedThreads_ = std::clamp(threads, 0, kMaxThreads);
}

const KernelSet* FastPass::kernelSet() const {
#if defined(__x86_64__)
  switch (path_) {
    case KernelPath::Reference:
      return nullptr;
    case KernelPath::Sse2:
      return &sse2Kernels();
    case KernelPath::Avx2:
      return &avx2Kernels();
    case KernelPath::Avx512:
      return &avx512Kernels();
  }
#endif
  return nullptr;
}

int FastPass::pack(const LinkedList& bodies, bool radii) {
  active_.clear();
  for (ListNode* node = bodies.head(); node != nullptr; node = node->next) {
    auto* b = static_cast<Body*>(node->item());
    if (b->active) {
      active_.push_back(b);
    }
  }
  const int n = static_cast<int>(active_.size());
  // Each array starts on a 64-byte boundary, so that blocks handled by
  // different threads never share a cache line.
  const int stride = (n + PackedBodies::kPadding + 7) / 8 * 8;
  if (stride > stride_) {
    stride_ = stride;
    storage_.assign(static_cast<size_t>(7 * stride_ + 8), 0.0);
  }
  const auto address = reinterpret_cast<uintptr_t>(storage_.data());
  double* base = storage_.data() + ((64 - address % 64) % 64) / sizeof(double);
  double** arrays[] = {&x_, &y_, &z_, &m_, &fx_, &fy_, &fz_};
  for (int a = 0; a < 7; ++a) {
    *arrays[a] = base + a * stride_;
    std::fill(*arrays[a] + n, *arrays[a] + n + PackedBodies::kPadding, 0.0);
  }
  for (int k = 0; k < n; ++k) {
    const Body& b = *active_[static_cast<size_t>(k)];
    x_[k] = b.position.x;
    y_[k] = b.position.y;
    z_[k] = b.position.z;
    m_[k] = radii ? b.radius : b.mass;
    fx_[k] = b.force.x;
    fy_[k] = b.force.y;
    fz_[k] = b.force.z;
  }
  return n;
}

int FastPass::threadsFor(int count, bool forcePass) {
  const int forced = forcedThreads_;
  if (forced > 0) {
    return forced;
  }
  if (count < kThreadThreshold || automaticThreads_ == 1) {
    return 1;
  }
  if (singleNsPerPair_ == 0.0 || cooldown_ > 0) {
    // Only force passes count down the pause; the collision test follows.
    if (forcePass) {
      cooldown_ = std::max(cooldown_ - 1, 0);
    }
    return 1;
  }
  return automaticThreads_;
}

void FastPass::judge(bool worthwhile) {
  if (forcedThreads_ > 0) {
    return;
  }
  if (worthwhile) {
    if (++successes_ >= kSuccessesToShrink) {
      successes_ = 0;
      backoff_ = std::max(backoff_ / 2, kFirstBackoff);
    }
  } else {
    successes_ = 0;
    cooldown_ = backoff_;
    backoff_ = std::min(2 * backoff_, kMaxBackoff);
  }
}

bool FastPass::computeForces(const LinkedList& bodies, double gravitationalConstant) {
  const KernelSet* kernels = kernelSet();
  if (kernels == nullptr) {
    return false;
  }
  const int n = pack(bodies, false);
  if (n < 2) {
    return true;
  }
  PackedBodies packed{x_, y_, z_, m_, fx_, fy_, fz_, n, -gravitationalConstant};
  const int threads = threadsFor(n, true);
  const int blocks = (n + kBlockSize - 1) / kBlockSize;
  const double pairs = static_cast<double>(n) * (n - 1) / 2.0;
  const auto start = std::chrono::steady_clock::now();
  if (threads == 1 || blocks == 1) {
    kernels->triangle(packed, 0, n);
    if (n >= kThreadThreshold) {
      // A running mean over the last few passes.
      const double ns = static_cast<double>(nanosecondsSince(start)) / pairs;
      singleNsPerPair_ = singleNsPerPair_ == 0.0 ? ns : 0.75 * singleNsPerPair_ + 0.25 * ns;
    }
  } else {
    ForceTask& task = forceTask_;
    task.kernels = kernels;
    task.packed = packed;
    task.blockSize = kBlockSize;
    task.blocks = blocks;
    if (task.progressCapacity < blocks) {
      task.progress = std::make_unique<Progress[]>(static_cast<size_t>(blocks));
      task.progressCapacity = blocks;
    }
    for (int r = 0; r < blocks; ++r) {
      task.progress[static_cast<std::size_t>(r)].tiles.store(0, std::memory_order_relaxed);
    }
    pool_.run(task, blocks, threads - 1);
    const double ns = static_cast<double>(nanosecondsSince(start)) / pairs;
    judge(ns < kWorthwhile * singleNsPerPair_);
  }
  for (int k = 0; k < n; ++k) {
    Body& b = *active_[static_cast<size_t>(k)];
    b.force.x = fx_[k];
    b.force.y = fy_[k];
    b.force.z = fz_[k];
  }
  return true;
}

void FastPass::ForceTask::run(int row, int) {
  const int rowBegin = row * blockSize;
  const int rowEnd = std::min(rowBegin + blockSize, packed.count);
  for (int col = row; col < blocks; ++col) {
    if (row > 0) {
      // Tile (row - 1, col) is the (col - row + 2)-th of the row above.
      const int needed = col - row + 2;
      std::atomic<int>& above = progress[static_cast<std::size_t>(row - 1)].tiles;
      if (above.load(std::memory_order_acquire) < needed) {
        while (above.load(std::memory_order_acquire) < needed) {
          cpuRelax();
        }
      }
    }
    if (col == row) {
      kernels->triangle(packed, rowBegin, rowEnd);
    } else {
      const int colBegin = col * blockSize;
      kernels->rectangle(packed, rowBegin, rowEnd, colBegin,
                         std::min(colBegin + blockSize, packed.count));
    }
    progress[static_cast<std::size_t>(row)].tiles.store(col - row + 1, std::memory_order_release);
  }
}

bool FastPass::mayTouch(const LinkedList& bodies) {
  const KernelSet* kernels = kernelSet();
  if (kernels == nullptr) {
    return true;
  }
  const int n = pack(bodies, true);
  PackedBodies packed{x_, y_, z_, m_, fx_, fy_, fz_, n, 0.0};
  const int threads = threadsFor(n, false);
  if (threads == 1) {
    return kernels->anyTouching(packed, 0, n);
  }
  TouchTask& task = touchTask_;
  task.kernels = kernels;
  task.packed = packed;
  task.found.store(false);
  const int chunks = threads * kChunksPerThread;
  task.rowStarts.clear();
  for (int c = 0; c <= chunks; ++c) {
    task.rowStarts.push_back(touchRowStart(n, chunks, c));
  }
  const auto start = std::chrono::steady_clock::now();
  const int64_t waitNs = pool_.run(task, static_cast<int>(task.rowStarts.size()) - 1, threads - 1);
  judge(waitNs < kStallNs || 3 * waitNs < nanosecondsSince(start));
  return task.found.load();
}

void FastPass::TouchTask::run(int chunk, int) {
  if (found.load(std::memory_order_relaxed)) {
    return;
  }
  const size_t c = static_cast<size_t>(chunk);
  if (kernels->anyTouching(packed, rowStarts[c], rowStarts[c + 1])) {
    found.store(true, std::memory_order_relaxed);
  }
}

// Exactness: this is the threaded schedule's tiling cut down to one block's
// rows and columns. Every body of the block gets its contributions in list
// order of partner, each pair evaluated by the same kernel code in the same
// orientation (earlier body first) as in the whole pass:
// - the rectangle of the earlier bodies [0, begin) against the block gives
//   the block's partners before it, in row order, on the partner side of the
//   kernel, exactly as the tiles above the block's diagonal do;
// - the triangle of the block gives the partners inside it;
// - the rectangle of the block against the later bodies [end, n) gives the
//   partners after it, on the row side, exactly as the block's own row of
//   tiles does.
// The kernels also add to the packed accumulators of the bodies outside the
// block; those sums are not written back. A pair inside the block is
// evaluated once; a pair between the block and the rest is evaluated here and
// again for the other body's block: that duplicate work is the price of
// needing no partial sums from other blocks.
bool FastPass::computeBlockForces(const LinkedList& bodies, double gravitationalConstant, int begin,
                                  int end) {
  const KernelSet* kernels = kernelSet();
  if (kernels == nullptr) {
    return false;
  }
  const int n = pack(bodies, false);
  end = std::clamp(end, 0, n);
  begin = std::clamp(begin, 0, end);
  assert(begin % kBlockAlignment == 0 || begin == end);
  PackedBodies packed{x_, y_, z_, m_, fx_, fy_, fz_, n, -gravitationalConstant};
  kernels->rectangle(packed, 0, begin, begin, end);
  kernels->triangle(packed, begin, end);
  kernels->rectangle(packed, begin, end, end, n);
  for (int k = begin; k < end; ++k) {
    Body& b = *active_[static_cast<size_t>(k)];
    b.force.x = fx_[k];
    b.force.y = fy_[k];
    b.force.z = fz_[k];
  }
  return true;
}

bool FastPass::mayTouchRows(const LinkedList& bodies, int begin, int end) {
  const KernelSet* kernels = kernelSet();
  if (kernels == nullptr) {
    return true;
  }
  const int n = pack(bodies, true);
  end = std::clamp(end, 0, n);
  begin = std::clamp(begin, 0, end);
  const PackedBodies packed{x_, y_, z_, m_, fx_, fy_, fz_, n, 0.0};
  return kernels->anyTouching(packed, begin, end);
}

int forceBlockStart(int count, int parts, int part) {
  if (part >= parts) {
    return count;
  }
  if (part <= 0) {
    return 0;
  }
  const int64_t start = static_cast<int64_t>(count) * part / parts;
  return static_cast<int>(start - start % kBlockAlignment);
}

int touchRowStart(int count, int parts, int part) {
  if (part >= parts) {
    return count;
  }
  if (part <= 0) {
    return 0;
  }
  // The rows before s hold s (2n - 1 - s) / 2 pairs, which grows with s: the
  // part starts at the first row where that reaches its share. Doubles count
  // exactly far past any world that fits in memory.
  const double n = count;
  const double wanted = n * (n - 1.0) / 2.0 * part / parts;
  int low = 0;
  int high = count;
  while (low < high) {
    const int mid = low + (high - low) / 2;
    const double s = mid;
    if (s * (2.0 * n - 1.0 - s) / 2.0 >= wanted) {
      high = mid;
    } else {
      low = mid + 1;
    }
  }
  return low;
}
