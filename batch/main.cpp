// orrenvale-batch: loads a datafile, steps the world as the application's step
// command does, and writes a log, a datafile and a summary.
#include <string>
#include <vector>

#include "batch/batch_job.h"
#include "batch/batch_runner.h"

int main(int argc, char** argv) {
  // A launcher (mpirun) may add arguments of its own, which joining the job
  // takes away again.
  BatchJob job(&argc, &argv);
  return runBatch(std::vector<std::string>(argv + 1, argv + argc), job);
}
