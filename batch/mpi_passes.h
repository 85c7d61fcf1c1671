#pragma once

#include <vector>

#include "engine/distributed_passes.h"

class Body;

// The engine's force pass and touch test shared out over the processes of
// MPI_COMM_WORLD: each process computes one block and the results are
// exchanged, so that every process goes on with the same state.
class MpiPasses final : public DistributedPasses {
 public:
  MpiPasses(int rank, int size);

  void computeForces(World& world) override;
  bool mayTouch(World& world) override;

 private:
  // The active bodies in list order, as the engine numbers them for blocks.
  void collectActive(const World& world);

  int rank_;
  int size_;
  std::vector<Body*> active_;
  std::vector<double> forces_;
  std::vector<int> counts_;
  std::vector<int> offsets_;
};
