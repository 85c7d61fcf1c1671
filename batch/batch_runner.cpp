// The runner behind orrenvale-batch and `python3 -m orrenvale`: loads a
// datafile, steps the world as the application's step command does, and
// writes a log, a datafile and a summary. For scripts and people at a
// terminal, so every failure is reported on one line.
#include "batch_runner.h"

#include <signal.h>
#include <unistd.h>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <string>
#include <vector>

#include "batch/batch_job.h"
#include "batch/batch_options.h"
#include "batch/progress_bar.h"
#include "document/log_line.h"
#include "document/long_step.h"
#include "document/output_file.h"
#include "document/plist_writer.h"
#include "document/world_document.h"

#ifndef ORRENVALE_VERSION
#define ORRENVALE_VERSION "unknown"
#endif

namespace {

// Set by Ctrl+C (SIGINT) or SIGTERM: the run stops between two steps, or
// within a long step, and writes nothing.
volatile std::sig_atomic_t gStopSignal = 0;

extern "C" void onStopSignal(int signal) {
  gStopSignal = signal;
}

void catchStopSignals() {
  struct sigaction action {};
  action.sa_handler = onStopSignal;
  sigemptyset(&action.sa_mask);
  action.sa_flags = SA_RESTART;
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
}

// Reports a step that runs long (adaptive stepping refining towards its
// smallest substep): on a terminal one line redrawn in place, elsewhere a
// line a second. Ctrl+C cancels the step, which leaves the world as it was.
class RunnerStepWatch : public LongStepWatch {
 public:
  // shared: one process of a job, whose step the others are taking too; it
  // reports but cannot cancel alone.
  RunnerStepWatch(bool terminal, bool shared) : terminal_(terminal), shared_(shared) {}

  void beginStep(int64_t number) {
    number_ = number;
    LongStepWatch::beginStep();
  }
  void endStep() {
    if (reported() && terminal_) {
      std::fputc('\n', stderr);
    }
  }

 protected:
  bool allowed() override { return shared_ || gStopSignal == 0; }
  bool report(const StepProgress& progress, double seconds) override {
    const auto now = Clock::now();
    if (!terminal_ && now - lastLine_ < std::chrono::seconds(1)) {
      return true;
    }
    lastLine_ = now;
    std::fprintf(
        stderr,
        terminal_ ? "\rorrenvale-batch: step %lld: %s\x1b[K" : "orrenvale-batch: step %lld: %s\n",
        static_cast<long long>(number_), describeLongStep(progress, seconds).c_str());
    std::fflush(stderr);
    return true;
  }

 private:
  bool terminal_;
  bool shared_;
  int64_t number_ = 0;
  Clock::time_point lastLine_;
};
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
  job.shareForces(world);

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
  RunnerStepWatch watch(isatty(STDERR_FILENO) != 0, job.shared());
  job.start();
  for (int64_t done = 1; done <= options.steps; ++done) {
    watch.beginStep(done);
    const bool stepped = world.step(&watch);
    watch.endStep();
    if (!stepped || gStopSignal != 0) {
      if (progress) {
        std::fputc('\n', stderr);
      }
      // The log's new file goes with `log`; the old one stays as it was.
      std::fprintf(stderr, "orrenvale-batch: interrupted in step %lld of %lld; nothing was saved\n",
                   static_cast<long long>(done), static_cast<long long>(options.steps));
      return 128 + (gStopSignal != 0 ? static_cast<int>(gStopSignal) : SIGINT);
    }
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

int runBatch(const std::vector<std::string>& args, BatchJob& job) {
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
  // In a job of several processes Ctrl+C goes to the launcher, which ends
  // every process; one process alone cannot leave the others' steps.
  if (!job.shared()) {
    catchStopSignals();
  }
  int status = run(parsed.options, job);
  // The summary is buffered; a failure to write it shows when it is flushed.
  // The host may go on running (the Python module's entry point returns to
  // the interpreter): the results must be out before it does.
  errno = 0;
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
    // The C library keeps only the error flag of an earlier failed write.
    report(QStringLiteral("standard output"),
           QStringLiteral("cannot be written (%1)").arg(systemErrorText(errno != 0 ? errno : EIO)));
    status = kExitFailure;
  }
  return job.finish(status);
}

int runBatch(const std::vector<std::string>& args) {
  BatchJob alone(nullptr, nullptr);
  return runBatch(args, alone);
}
