#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <thread>
#include <vector>

// Helper threads that the engine uses inside one call only: the calling
// thread publishes a task, works on it itself, and returns once every index
// of the task is done, so a step stays one synchronous call. Indices are
// claimed one at a time by whichever thread is free, tagged with the task's
// generation, so a helper that wakes up late cannot take part in a task that
// has already ended or in the next one.
class WorkerPool {
 public:
  class Task {
   public:
    // Runs index i. helper is 0 on the calling thread, 1.. on the helpers.
    virtual ~Task() = default;
    virtual void run(int i, int helper) = 0;
  };

  WorkerPool() = default;
  ~WorkerPool();
  WorkerPool(const WorkerPool&) = delete;
  WorkerPool& operator=(const WorkerPool&) = delete;

  // Runs task.run(i) for every i in [0, count) on the calling thread and up to
  // helpers other threads (started on first use). Returns the nanoseconds the
  // calling thread spent waiting for helpers to finish their last indices.
  int64_t run(Task& task, int count, int helpers);

 private:
  void ensureHelpers(int helpers);
  void helperLoop(int helper);
  // Next index of the task of generation gen, or -1 when none is left.
  int claim(uint32_t gen);
  void work(uint32_t gen, int helper);

  std::vector<std::thread> threads_;
  std::atomic<uint32_t> generation_{0};
  // High half: generation; low half: next index to hand out.
  std::atomic<uint64_t> next_{0};
  std::atomic<int> count_{0};
  std::atomic<int> helpers_{0};
  std::atomic<int> completed_{0};
  std::atomic<Task*> task_{nullptr};
  std::atomic<bool> stop_{false};
};

// Spins for a short while with the processor's pause hint.
void cpuRelax();
// Nanoseconds on the steady clock since start.
int64_t nanosecondsSince(std::chrono::steady_clock::time_point start);
