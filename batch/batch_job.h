#pragma once

#include <QString>
#include <memory>

#include "batch/batch_options.h"
#include "batch/job_link.h"
#include "document/world_document.h"

// One run of orrenvale-batch, alone or as one process of an MPI job. In a
// job the first process (the leader) reads the world and writes every
// output; the others (followers) get the world from it, step their own copy
// with it, and print nothing. The engine's shared passes keep every copy
// identical, bit for bit, so the output is that of a run alone.
//
// The leader's run goes: readWorldFile, start, the steps, finish. Every
// process must make the same collective calls in the same order; the
// followers' side of the protocol is follow.
class BatchJob {
 public:
  BatchJob(int* argc, char*** argv);
  ~BatchJob();
  BatchJob(const BatchJob&) = delete;
  BatchJob& operator=(const BatchJob&) = delete;

  bool leads() const;
  // Whether other processes step this world too.
  bool shared() const;
  // A follower's whole run, given the command line that every process
  // parsed: the exit status of the job, printing nothing.
  int follow(const BatchOptionsResult& parsed);

  // The leader reads the file and sends its bytes to every follower; every
  // process parses them, so all get the same world or the same error.
  DocumentReadResult readWorldFile(const QString& path);
  // Has the world share its force passes with the job's other processes.
  void shareForces(World& world);
  // The outputs are open: every process starts stepping.
  void start();
  // Ends the job with the leader's exit status on every process.
  int finish(int status);

 private:
  int shareStatus(int status);

  std::unique_ptr<JobLink> link_;
  // Whether the followers hold the world and wait for the leader's word, and
  // whether they have begun to step.
  bool worldShared_ = false;
  bool started_ = false;
};
