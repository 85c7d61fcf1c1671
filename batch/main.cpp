// orrenvale-batch: loads a datafile, steps the world as the application's step
// command does, and writes a log, a datafile and a summary. For scripts and
// people at a terminal, so every failure is reported on one line.
#include <unistd.h>
#include <cerrno>
#include <cstdio>
#include <string>
#include <vector>

#include "batch/batch_job.h"
#include "batch/batch_options.h"
#include "batch/progress_bar.h"
#include "document/log_line.h"
#include "document/output_file.h"
#include "document/plist_writer.h"
#include "document/world_document.h"

#ifndef ORRENVALE_VERSION
#define ORRENVALE_VERSION "unknown"
#endif

namespace {

// The log is handed to the file in pieces of about this size.
constexpr std::size_t kLogChunk = 1 << 16;

void report(const QString& path, const QString& reason) {
  std::fprintf(stderr, "orrenvale-batch: %s: %s\n", qUtf8Printable(path), qUtf8Printable(reason));
}

void printReal(double value) {
  std::printf("\t%.17g", value);
}

void printSummary(const World& world, int64_t steps) {
  std::printf("steps\t%lld\n", static_cast<long long>(steps));
  std::printf("elapsedTime");
  printReal(world.elapsedTime);
  std::printf("\nbodies\t%d\n", world.bodies->count());
  std::printf("energy");
  printReal(world.energy());
  const Vector p = world.momentum();
  std::printf("\nmomentum");
  printReal(p.x);
  printReal(p.y);
  printReal(p.z);
  const Vector c = world.centerOfMass();
  std::printf("\ncenterOfMass");
  printReal(c.x);
  printReal(c.y);
  printReal(c.z);
  const Vector l = world.angularMomentum();
  std::printf("\nangularMomentum");
  printReal(l.x);
  printReal(l.y);
  printReal(l.z);
  std::printf("\n");
}

int run(const BatchOptions& options, BatchJob& job) {
  DocumentReadResult read = job.readWorldFile(options.world);
  if (!read.dict) {
    report(options.world, read.error);
    return kExitFailure;
  }
  // The views are not used here; they are kept so that --save writes them back.
  std::optional<PlistValue> views;
  World world;
  LoadHooks hooks;
  hooks.loadViews = [&](const PlistValue& value) { views = value; };
  loadToWorldFromDict(world, &*read.dict, DocumentSections{}, hooks);
  read.dict.reset();

  // A log that cannot be written ends the run at once: the old file stays
  // as it was, and no time goes into steps nobody can see.
  OutputFile log;
  const auto logFailed = [&] {
    report(*options.logPath, QStringLiteral("cannot be written (%1)").arg(log.errorString()));
    return kExitFailure;
  };
  if (options.logPath) {
    const bool opened = *options.logPath == QLatin1String("-")
                            ? log.openStandardOutput()
                            : log.open(*options.logPath, FifoOpen::WaitForReader);
    if (!opened) {
      return logFailed();
    }
  }
  const LogReals reals = options.exact ? LogReals::Exact : LogReals::Fixed;
  std::optional<ProgressBar> progress;
  if (options.progress) {
    progress.emplace(stderr, options.steps, isatty(STDERR_FILENO) != 0);
  }

  std::string lines;
  job.start();
  for (int64_t done = 1; done <= options.steps; ++done) {
    world.step();
    if (options.logPath) {
      appendLogLine(lines, world, reals);
      if (lines.size() >= kLogChunk) {
        if (!log.write(lines.data(), lines.size())) {
          return logFailed();
        }
        lines.clear();
      }
    }
    if (progress) {
      progress->update(done);
    }
  }
  if (progress) {
    progress->finish(options.steps);
  }
  if (options.logPath) {
    if (!log.write(lines.data(), lines.size()) || !log.commit()) {
      return logFailed();
    }
  }

  if (options.savePath) {
    const PlistDict saved = saveWorldToDict(world, DocumentSections{}, views ? &*views : nullptr);
    QString error;
    if (!writePlistFile(*options.savePath, PlistValue(saved), &error, FifoOpen::WaitForReader)) {
      report(*options.savePath, QStringLiteral("cannot be written (%1)").arg(error));
      return kExitFailure;
    }
  }
  if (options.summary) {
    printSummary(world, options.steps);
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  BatchJob job(&argc, &argv);
  const std::vector<std::string> args(argv + 1, argv + argc);
  const BatchOptionsResult parsed = parseBatchOptions(args, isatty(STDERR_FILENO) != 0);
  if (!job.leads()) {
    return job.follow(parsed);
  }
  if (!parsed.error.isEmpty()) {
    std::fprintf(stderr, "orrenvale-batch: %s\n\n%s", qUtf8Printable(parsed.error), batchUsage());
    return kExitUsage;
  }
  if (parsed.options.help) {
    std::fputs(batchUsage(), stdout);
    return 0;
  }
  if (parsed.options.version) {
    std::printf("orrenvale-batch %s\n", ORRENVALE_VERSION);
    return 0;
  }
  int status = run(parsed.options, job);
  // The summary is buffered; a failure to write it shows when it is flushed.
  errno = 0;
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
    // The C library keeps only the error flag of an earlier failed write.
    report(QStringLiteral("standard output"),
           QStringLiteral("cannot be written (%1)").arg(systemErrorText(errno != 0 ? errno : EIO)));
    status = kExitFailure;
  }
  return job.finish(status);
}
