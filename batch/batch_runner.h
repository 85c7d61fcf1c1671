#pragma once

#include <string>
#include <vector>

class BatchJob;

// Runs orrenvale-batch on the arguments that follow the program name: parses
// them, reports a usage error, prints help or the version, or loads the world,
// steps it and writes the log, the datafile and the summary. Messages go to
// standard error and results to standard output, each prefixed as the program
// prints them. Returns the exit status.
// In an MPI job every process calls it with its job; the
// followers print nothing.
int runBatch(const std::vector<std::string>& args, BatchJob& job);
// The same, alone (for hosts such as the Python module).
int runBatch(const std::vector<std::string>& args);
