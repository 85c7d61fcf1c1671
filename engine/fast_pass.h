#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

#include "kernels.h"
#include "speed.h"
#include "worker_pool.h"

class Body;
class LinkedList;

// The packed force and collision passes of a world, which owns one: it keeps
// its packing arrays and helper threads across steps. Its results are bit for
// bit those of the passes over the body list. The instruction set and thread
// count start from the environment (ORRENVALE_SIMD, ORRENVALE_THREADS) and
// may be changed between steps.
class FastPass {
 public:
  FastPass();
  ~FastPass();

  // Adds the forces of all pairs of active bodies, as World::computeForcesPlain
  // does. Returns false, having done nothing, when the reference path is
  // chosen.
  bool computeForces(const LinkedList& bodies, double gravitationalConstant);
  // False when no two active bodies touch; true when some pair touches or the
  // test was not made (reference path).
  bool mayTouch(const LinkedList& bodies);
  // The same two passes for one block of the work, on the calling thread: the
  // forces of the active bodies [begin, end) (in list order) from all their
  // partners, written to those bodies only; and the touch test of the pairs
  // whose earlier body is in [begin, end). Same return values as above. The
  // force block must start at a multiple of 8 (see forceBlockStart).
  bool computeBlockForces(const LinkedList& bodies, double gravitationalConstant, int begin,
                          int end);
  bool mayTouchRows(const LinkedList& bodies, int begin, int end);

  // Chooses the path of later passes; returns false and changes nothing when
  // the processor lacks it.
  bool setPath(KernelPath path);
  KernelPath path() const { return path_; }
  // Forces the number of threads of every pass (1 to 64); 0 returns to the
  // automatic choice: one thread below about 500 bodies or while another
  // process keeps a core busy, otherwise one per core.
  void setForcedThreads(int threads);
  int forcedThreads() const { return forcedThreads_; }

  FastPass(const FastPass&) = delete;
  FastPass& operator=(const FastPass&) = delete;

 private:
  struct alignas(64) Progress {
    std::atomic<int> tiles{0};
  };

  // One row of blocks of the pair triangle. Blocks are done in the order that
  // keeps every body's sum in partner order: a block's row goes left to
  // right, and tile (I, J) waits for tile (I - 1, J), which feeds the same
  // partner bodies just before it.
  class ForceTask final : public WorkerPool::Task {
   public:
    void run(int row, int helper) override;

    const KernelSet* kernels = nullptr;
    PackedBodies packed;
    int blockSize = 0;
    int blocks = 0;
    std::unique_ptr<Progress[]> progress;
    int progressCapacity = 0;
  };

  // Chunks of rows of the touch test; any touching pair ends the test.
  class TouchTask final : public WorkerPool::Task {
   public:
    void run(int chunk, int helper) override;

    const KernelSet* kernels = nullptr;
    PackedBodies packed;
    std::vector<int> rowStarts;
    std::atomic<bool> found{false};
  };

  // The kernels of the chosen path; null for the reference path.
  const KernelSet* kernelSet() const;
  // Copies the active bodies into the packed arrays; radii instead of masses
  // for the touch test. Returns the count.
  int pack(const LinkedList& bodies, bool radii);
  int threadsFor(int count, bool forcePass);
  // Records whether a threaded pass paid, for the automatic choice.
  void judge(bool worthwhile);

  KernelPath path_;
  int forcedThreads_ = 0;
  int automaticThreads_ = 1;
  // Passes left to run on one thread after a helper was found slow, and the
  // length of the next such pause (doubled while helpers stay slow).
  int cooldown_ = 0;
  int backoff_ = 0;
  int successes_ = 0;
  // Recent one-thread force passes of large worlds, in nanoseconds per pair;
  // 0 until the first.
  double singleNsPerPair_ = 0.0;

  std::vector<Body*> active_;
  std::vector<double> storage_;
  int stride_ = 0;
  double* x_ = nullptr;
  double* y_ = nullptr;
  double* z_ = nullptr;
  double* m_ = nullptr;
  double* fx_ = nullptr;
  double* fy_ = nullptr;
  double* fz_ = nullptr;

  ForceTask forceTask_;
  TouchTask touchTask_;
  WorkerPool pool_;
};
