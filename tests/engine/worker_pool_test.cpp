#include <gtest/gtest.h>

#include <atomic>
#include <vector>

#include "engine/worker_pool.h"

namespace {

// Counts how often each index ran and on which thread.
class CountingTask final : public WorkerPool::Task {
 public:
  explicit CountingTask(int count) : runs(static_cast<size_t>(count)) {}
  void run(int i, int helper) override {
    runs[static_cast<size_t>(i)].fetch_add(1);
    if (helper > 0) {
      helped.store(true);
    }
  }
  std::vector<std::atomic<int>> runs;
  std::atomic<bool> helped{false};
};

// Many short tasks in a row, so that helpers arrive late, early and between
// tasks: each index must run exactly once, and before run() returns; without
// helpers the caller runs everything.
TEST(WorkerPool, EveryIndexRunsExactlyOncePerTask) {
  WorkerPool pool;
  for (int helpers : {0, 1, 3}) {
    for (int round = 0; round < 300; ++round) {
      const int count = 1 + round % 37;
      CountingTask task(count);
      pool.run(task, count, helpers);
      for (int i = 0; i < count; ++i) {
        ASSERT_EQ(task.runs[static_cast<size_t>(i)].load(), 1)
            << "helpers " << helpers << ", round " << round << ", index " << i;
      }
      if (helpers == 0) {
        ASSERT_FALSE(task.helped.load());
      }
    }
  }
}

}  // namespace
