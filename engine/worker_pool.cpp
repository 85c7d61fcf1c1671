#include "worker_pool.h"

#include <chrono>

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#endif

namespace {
// How long an idle helper spins before it sleeps. The four force passes of a
// step follow each other within microseconds, so a helper that spins a
// little is there for the next one; a longer idle time (the host between
// steps) puts it to sleep so it costs the machine nothing.
constexpr auto kSpinBeforeSleep = std::chrono::microseconds(200);
}  // namespace

int64_t nanosecondsSince(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now() -
                                                              start)
      .count();
}

void cpuRelax() {
#if defined(__x86_64__) || defined(__i386__)
  _mm_pause();
#else
  std::this_thread::yield();
#endif
}

WorkerPool::~WorkerPool() {
  stop_.store(true);
  generation_.fetch_add(1, std::memory_order_release);
  generation_.notify_all();
  for (std::thread& t : threads_) {
    t.join();
  }
}

void WorkerPool::ensureHelpers(int helpers) {
  while (static_cast<int>(threads_.size()) < helpers) {
    const int helper = static_cast<int>(threads_.size()) + 1;
    threads_.emplace_back([this, helper] { helperLoop(helper); });
  }
}

int64_t WorkerPool::run(Task& task, int count, int helpers) {
  ensureHelpers(helpers);
  const uint32_t gen = generation_.load(std::memory_order_relaxed) + 1;
  task_.store(&task, std::memory_order_relaxed);
  count_.store(count, std::memory_order_relaxed);
  helpers_.store(helpers, std::memory_order_relaxed);
  completed_.store(0, std::memory_order_relaxed);
  next_.store(static_cast<uint64_t>(gen) << 32, std::memory_order_release);
  generation_.store(gen, std::memory_order_release);
  if (helpers > 0) {
    generation_.notify_all();
  }

  work(gen, 0);

  const auto start = std::chrono::steady_clock::now();
  while (completed_.load(std::memory_order_acquire) < count) {
    cpuRelax();
  }
  return nanosecondsSince(start);
}

int WorkerPool::claim(uint32_t gen) {
  uint64_t v = next_.load(std::memory_order_acquire);
  for (;;) {
    if (static_cast<uint32_t>(v >> 32) != gen) {
      return -1;
    }
    const int i = static_cast<int>(v & 0xffffffffu);
    if (i >= count_.load(std::memory_order_relaxed)) {
      return -1;
    }
    if (next_.compare_exchange_weak(v, v + 1, std::memory_order_acq_rel)) {
      return i;
    }
  }
}

void WorkerPool::work(uint32_t gen, int helper) {
  for (int i = claim(gen); i >= 0; i = claim(gen)) {
    // The task cannot change while index i of its generation is unfinished.
    task_.load(std::memory_order_relaxed)->run(i, helper);
    completed_.fetch_add(1, std::memory_order_release);
  }
}

void WorkerPool::helperLoop(int helper) {
  uint32_t seen = 0;
  for (;;) {
    uint32_t gen = generation_.load(std::memory_order_acquire);
    if (gen == seen) {
      const auto start = std::chrono::steady_clock::now();
      for (int spins = 0; gen == seen; ++spins) {
        cpuRelax();
        if ((spins & 63) == 63 && std::chrono::steady_clock::now() - start > kSpinBeforeSleep) {
          generation_.wait(seen, std::memory_order_acquire);
        }
        gen = generation_.load(std::memory_order_acquire);
      }
    }
    seen = gen;
    if (stop_.load()) {
      return;
    }
    if (helper <= helpers_.load(std::memory_order_relaxed)) {
      work(gen, helper);
    }
  }
}
