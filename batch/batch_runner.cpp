// The runner behind orrenvale-batch and `python3 -m orrenvale`. For scripts and
// people at a terminal, so every failure is reported on one line.
#include "batch_runner.h"

#include <unistd.h>
#include <QSaveFile>
#include <cstdio>
#include <string>
#include <vector>

#include "batch/batch_options.h"
#include "batch/progress_bar.h"
#include "document/log_line.h"
#include "document/plist_writer.h"
#include "document/world_document.h"

#ifndef ORRENVALE_VERSION
#define ORRENVALE_VERSION "unknown"
#endif

namespace {

constexpr int kExitFailure = 1;
constexpr int kExitUsage = 2;
// The log is handed to the file in pieces of about this size.
constexpr std::size_t kLogChunk = 1 << 16;

void report(const QString& path, const QString& reason) {
  std::fprintf(stderr, "orrenvale-batch: %s: %s\n", qUtf8Printable(path), qUtf8Printable(reason));
}

// Where log lines go: standard output, or a file replaced atomically at the end.
class LogSink {
 public:
  bool open(const QString& path) {
    if (path == QLatin1String("-")) {
      return true;
    }
    file_.emplace(path);
    return file_->open(QIODevice::WriteOnly);
  }
  void write(std::string& text) {
    if (file_) {
      file_->write(text.data(), static_cast<qint64>(text.size()));
    } else {
      std::fwrite(text.data(), 1, text.size(), stdout);
    }
    text.clear();
  }
  bool commit() { return file_ ? file_->commit() : std::fflush(stdout) == 0; }
  QString errorString() const {
    return file_ ? file_->errorString() : QStringLiteral("write error");
  }

 private:
  std::optional<QSaveFile> file_;
};

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

int run(const BatchOptions& options) {
  DocumentReadResult read = readDocumentFile(options.world);
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

  LogSink log;
  if (options.logPath && !log.open(*options.logPath)) {
    report(*options.logPath, QStringLiteral("cannot be written (%1)").arg(log.errorString()));
    return kExitFailure;
  }
  const LogReals reals = options.exact ? LogReals::Exact : LogReals::Fixed;
  std::optional<ProgressBar> progress;
  if (options.progress) {
    progress.emplace(stderr, options.steps, isatty(STDERR_FILENO) != 0);
  }

  std::string lines;
  for (int64_t done = 1; done <= options.steps; ++done) {
    world.step();
    if (options.logPath) {
      appendLogLine(lines, world, reals);
      if (lines.size() >= kLogChunk) {
        log.write(lines);
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
    log.write(lines);
    if (!log.commit()) {
      report(*options.logPath, QStringLiteral("cannot be written (%1)").arg(log.errorString()));
      return kExitFailure;
    }
  }

  if (options.savePath) {
    const PlistDict saved = saveWorldToDict(world, DocumentSections{}, views ? &*views : nullptr);
    QString error;
    if (!writePlistFile(*options.savePath, PlistValue(saved), &error)) {
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

int runBatch(const std::vector<std::string>& args) {
  const BatchOptionsResult parsed = parseBatchOptions(args, isatty(STDERR_FILENO) != 0);
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
  const int status = run(parsed.options);
  // The host may go on running (the Python module's entry point returns to
  // the interpreter): the results must be out before it does.
  std::fflush(stdout);
  return status;
}
