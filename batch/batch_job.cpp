#include "batch_job.h"

#include <QByteArray>
#include <cstdint>

#include "document/plist_reader.h"

BatchJob::BatchJob(int* argc, char*** argv) : link_(joinJob(argc, argv)) {}

BatchJob::~BatchJob() = default;

bool BatchJob::shared() const {
  return link_ != nullptr && link_->size() > 1;
}

bool BatchJob::leads() const {
  return link_ == nullptr || link_->rank() == 0;
}

DocumentReadResult BatchJob::readWorldFile(const QString& path) {
  if (link_ == nullptr) {
    return readDocumentFile(path);
  }
  // The size goes first; -1 says that the leader could not read the file,
  // and the followers stop there.
  QByteArray bytes;
  QString error;
  int64_t size = 0;
  if (leads()) {
    FileBytesResult file = readPlistFileBytes(path);
    if (file.bytes) {
      bytes = std::move(*file.bytes);
      size = bytes.size();
    } else {
      error = file.error;
      size = -1;
    }
  }
  link_->broadcast(&size, sizeof size);
  if (size < 0) {
    return {std::nullopt, error};
  }
  bytes.resize(static_cast<qsizetype>(size));
  link_->broadcast(bytes.data(), static_cast<std::size_t>(size));
  DocumentReadResult read = readDocument(bytes);
  worldShared_ = read.dict.has_value();
  return read;
}

int BatchJob::shareStatus(int status) {
  link_->broadcast(&status, sizeof status);
  return status;
}

void BatchJob::start() {
  if (link_ != nullptr) {
    shareStatus(0);
    started_ = true;
  }
}

int BatchJob::finish(int status) {
  if (link_ == nullptr || !worldShared_) {
    return status;
  }
  // Once the steps have begun, a failure may come while the followers are
  // still stepping (a log that cannot be written stops the leader at once):
  // they cannot be told in turn, so the job ends with the status.
  if (started_ && status != 0) {
    link_->abort(status);
  }
  return shareStatus(status);
}

void BatchJob::shareForces(World& world) {
  if (link_ != nullptr) {
    world.setDistributedPasses(link_->passes());
  }
}

int BatchJob::follow(const BatchOptionsResult& parsed) {
  if (!parsed.error.isEmpty()) {
    return kExitUsage;
  }
  if (parsed.options.help || parsed.options.version) {
    return 0;
  }
  DocumentReadResult read = readWorldFile(parsed.options.world);
  if (!read.dict) {
    return kExitFailure;
  }
  World world;
  loadToWorldFromDict(world, &*read.dict, DocumentSections{});
  read.dict.reset();
  shareForces(world);
  // Nonzero when the leader failed before the first step.
  if (const int go = shareStatus(0); go != 0) {
    return go;
  }
  for (int64_t done = 1; done <= parsed.options.steps; ++done) {
    world.step();
  }
  return shareStatus(0);
}
