// orrenvale-batch: loads a datafile, steps the world as the application's step
// command does, and writes a log, a datafile and a summary.
#include <string>
#include <vector>

#include "batch/batch_runner.h"

int main(int argc, char** argv) {
  return runBatch(std::vector<std::string>(argv + 1, argv + argc));
}
