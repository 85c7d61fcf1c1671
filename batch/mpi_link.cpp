// The runner's side of an MPI job: joining it, the one broadcast the runner
// needs, and the engine's passes shared out over the processes.
#include <mpi.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <optional>

#include "batch/mpi_passes.h"
#include "job_link.h"

namespace {

// Launchers that start MPI processes say so in the environment: Open MPI's
// mpirun, PMIx (Open MPI, Slurm's srun --mpi=pmix) and PMI (MPICH's Hydra,
// srun --mpi=pmi2). Without one the runner runs alone and never touches MPI,
// so the MPI build behaves as the plain runner when started directly.
bool startedByLauncher() {
  for (const char* name : {"OMPI_COMM_WORLD_SIZE", "PMIX_RANK", "PMI_RANK"}) {
    if (std::getenv(name) != nullptr) {
      return true;
    }
  }
  return false;
}

class MpiLink final : public JobLink {
 public:
  MpiLink(int* argc, char*** argv) {
    MPI_Init(argc, argv);
    MPI_Comm_rank(MPI_COMM_WORLD, &rank_);
    MPI_Comm_size(MPI_COMM_WORLD, &size_);
    // One process keeps the engine's own passes, threads included.
    if (size_ > 1) {
      passes_.emplace(rank_, size_);
    }
  }
  ~MpiLink() override { MPI_Finalize(); }
  MpiLink(const MpiLink&) = delete;
  MpiLink& operator=(const MpiLink&) = delete;

  int rank() const override { return rank_; }
  int size() const override { return size_; }
  DistributedPasses* passes() override { return passes_ ? &*passes_ : nullptr; }

  // MPI counts are ints: larger transfers go in pieces.
  void broadcast(void* data, std::size_t size) override {
    auto* bytes = static_cast<char*>(data);
    while (size > 0) {
      const int piece = static_cast<int>(std::min<std::size_t>(size, INT_MAX));
      MPI_Bcast(bytes, piece, MPI_BYTE, 0, MPI_COMM_WORLD);
      bytes += piece;
      size -= static_cast<std::size_t>(piece);
    }
  }

  [[noreturn]] void abort(int status) override {
    MPI_Abort(MPI_COMM_WORLD, status);
    std::_Exit(status);
  }

 private:
  int rank_ = 0;
  int size_ = 1;
  std::optional<MpiPasses> passes_;
};

}  // namespace

std::unique_ptr<JobLink> joinJob(int* argc, char*** argv) {
  if (!startedByLauncher()) {
    return nullptr;
  }
  return std::make_unique<MpiLink>(argc, argv);
}
