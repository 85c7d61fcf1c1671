#include "mpi_passes.h"

#include <mpi.h>

#include "engine/world.h"

MpiPasses::MpiPasses(int rank, int size)
    : rank_(rank),
      size_(size),
      counts_(static_cast<size_t>(size)),
      offsets_(static_cast<size_t>(size)) {}

void MpiPasses::collectActive(const World& world) {
  active_.clear();
  forEachItem<Body>(*world.bodies, [&](Body& b) {
    if (b.active) {
      active_.push_back(&b);
    }
  });
}

// Why the bits are those of the pass in one process: every process holds the
// same bodies with the same accumulators. Each body's force is computed by
// exactly one process, by the engine's block pass, which adds its partners in
// list order with the same kernels as the whole pass. The exchange copies the
// doubles unchanged, so afterwards every process holds every force exactly as
// the process of its block computed it, and all go on identically. A block
// may be empty (more processes than bodies); the exchange still takes place,
// so that every process makes the same calls.
void MpiPasses::computeForces(World& world) {
  collectActive(world);
  const int n = static_cast<int>(active_.size());
  for (int p = 0; p < size_; ++p) {
    const int begin = forceBlockStart(n, size_, p);
    counts_[static_cast<size_t>(p)] = 3 * (forceBlockStart(n, size_, p + 1) - begin);
    offsets_[static_cast<size_t>(p)] = 3 * begin;
  }
  const int begin = forceBlockStart(n, size_, rank_);
  const int end = forceBlockStart(n, size_, rank_ + 1);
  world.computeBlockForces(begin, end);
  forces_.resize(3 * active_.size());
  for (int k = begin; k < end; ++k) {
    const Vector& f = active_[static_cast<size_t>(k)]->force;
    double* slot = &forces_[3 * static_cast<size_t>(k)];
    slot[0] = f.x;
    slot[1] = f.y;
    slot[2] = f.z;
  }
  MPI_Allgatherv(MPI_IN_PLACE, 0, MPI_DATATYPE_NULL, forces_.data(), counts_.data(),
                 offsets_.data(), MPI_DOUBLE, MPI_COMM_WORLD);
  for (size_t k = 0; k < active_.size(); ++k) {
    active_[k]->force = Vector::of(forces_[3 * k], forces_[3 * k + 1], forces_[3 * k + 2]);
  }
}

// Only the yes-or-no test is shared: a pair that touches makes every process
// run the collision pass over the whole list, the same pass on the same
// state, so the responses agree too.
bool MpiPasses::mayTouch(World& world) {
  collectActive(world);
  const int n = static_cast<int>(active_.size());
  const int mine =
      world.mayTouchFromRows(touchRowStart(n, size_, rank_), touchRowStart(n, size_, rank_ + 1))
          ? 1
          : 0;
  int any = 0;
  MPI_Allreduce(&mine, &any, 1, MPI_INT, MPI_LOR, MPI_COMM_WORLD);
  return any != 0;
}
