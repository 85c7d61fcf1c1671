#pragma once

#include <cstddef>
#include <memory>

class DistributedPasses;

// The processes of one job started by an MPI launcher (mpirun, srun), as far
// as the runner needs them.
class JobLink {
 public:
  virtual ~JobLink() = default;
  virtual int rank() const = 0;
  virtual int size() const = 0;
  // Copies size bytes at data from the process of rank 0 to every other.
  virtual void broadcast(void* data, std::size_t size) = 0;
  // The force pass and touch test shared out over the job's processes, for
  // the world the runner steps; null when one process keeps them.
  virtual DistributedPasses* passes() = 0;
  // Ends every process of the job at once with this exit status.
  [[noreturn]] virtual void abort(int status) = 0;
};

// The job this process belongs to; null when it runs alone: the runner was
// built without MPI, or no launcher started it.
std::unique_ptr<JobLink> joinJob(int* argc, char*** argv);
