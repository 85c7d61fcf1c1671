#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <csignal>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTest>

#include "batch/progress_bar.h"
#include "batch_test_support.h"

namespace {

ProgramRun runBatch(const QStringList& args, const std::function<void()>& childSetup = {}) {
  return runProgram(QStringLiteral(ORRENVALE_BATCH), args, QProcessEnvironment::systemEnvironment(),
                    childSetup);
}

const QByteArray kOneBody = R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><dict><key>Time step</key><real>0.5</real>
  <key>Bodies</key><dict><key>100</key><dict><key>Body name</key><string>Earth</string>
    <key>Position X</key><real>1</real><key>Position Y</key><real>1.5</real>
    <key>Position Z</key><real>3</real><key>Velocity Y</key><real>1</real></dict></dict>
  <key>Views</key><dict><key>0</key><dict><key>View name</key><string>Side</string>
    <key>Camera position Z</key><real>12.5</real></dict></dict>
</dict></plist>
)";

using Batch = ScratchFolder;

struct OutputCase {
  const char* name;
  QStringList args;  // the one-body world follows
  std::string out;
  const char* err;  // what standard error holds; empty when nothing
};

class BatchOutput : public Batch, public ::testing::WithParamInterface<OutputCase> {};

TEST_P(BatchOutput, IsExactlyWhatTheOptionsAskFor) {
  const ProgramRun run = runBatch(GetParam().args + QStringList{write("one.ovd", kOneBody)});
  EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
  EXPECT_EQ(run.out.toStdString(), GetParam().out);
  EXPECT_EQ(run.err.isEmpty(), *GetParam().err == '\0') << run.err.toStdString();
  EXPECT_TRUE(run.err.contains(QLatin1String(GetParam().err))) << run.err.toStdString();
}

// One step by default; progress only on request or on a terminal.
INSTANTIATE_TEST_SUITE_P(
    Batch, BatchOutput,
    ::testing::Values(
        OutputCase{"LogOfOneStep",
                   {"--log", "-"},
                   "0.500000\tEarth\t1.000000\t2.000000\t3.000000\t0.000000\t1.000000\t0.000000\t"
                   "0.000000\t0.000000\t0.000000\n",
                   ""},
        OutputCase{"Summary",
                   {"--summary", "-n", "4"},
                   "steps\t4\nelapsedTime\t2\nbodies\t1\nenergy\t0.5\nmomentum\t0\t1\t0\n"
                   "centerOfMass\t1\t3.5\t3\nangularMomentum\t0\t0\t0\n",
                   ""},
        OutputCase{"ProgressOnRequest", {"--progress", "-n", "50"}, "", "50/50 steps"},
        OutputCase{"NoProgressWithoutATerminal", {"-n", "50"}, "", ""}),
    [](const auto& p) { return std::string(p.param.name); });

TEST_F(Batch, LogAndSaveFilesGetEveryStepAndTheSteppedWorldWithItsViews) {
  const ProgramRun run = runBatch({"--steps", "10", "--exact", "--log=" + path("log.txt"), "--save",
                                   path("out.ovd"), write("one.ovd", kOneBody)});
  ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
  const QList<QByteArray> lines = contents(path("log.txt")).split('\n');
  ASSERT_EQ(lines.size(), 11);  // ten lines and the empty rest after the last newline
  EXPECT_TRUE(lines[9].startsWith("5\tEarth\t1\t6.5\t3\t0\t1\t0\t0\t0\t0"))
      << lines[9].toStdString();
  const ProgramRun again = runBatch({"-n0", "--summary", path("out.ovd")});
  EXPECT_TRUE(again.out.contains("centerOfMass\t1\t6.5\t3\n")) << again.out.toStdString();
  const QByteArray xml = contents(path("out.ovd"));
  EXPECT_TRUE(xml.contains("<string>Side</string>") && xml.contains("<real>12.5</real>"));
}

// A hundred bodies ten units apart: a save takes about 60 KB and every
// logged step about 9 KB, more than the 32 KB the fault tests allow.
QByteArray hundredBodies() {
  QByteArray bodies;
  for (int i = 0; i < 100; ++i) {
    bodies += "<key>" + QByteArray::number(100 + i) + "</key><dict><key>Position X</key><real>" +
              QByteArray::number(10 * i) + "</real></dict>";
  }
  return "<plist><dict><key>Bodies</key><dict>" + bodies + "</dict></dict></plist>";
}

// Reads a FIFO until its writer closes it. A minute without a writer (one
// that replaced the FIFO instead of writing to it) ends the wait.
QByteArray drainFifo(int fd) {
  QByteArray received;
  pollfd ready{fd, POLLIN, 0};
  char buffer[1 << 16];
  ssize_t got = 0;
  while (poll(&ready, 1, 60000) > 0 && (got = read(fd, buffer, sizeof buffer)) > 0) {
    received.append(buffer, got);
  }
  return received;
}

class BatchTargets : public Batch, public ::testing::WithParamInterface<const char*> {};

TEST_P(BatchTargets, FifoAndOwnStandardOutputReceiveWhatARegularFileWould) {
  const QString world = write("world.ovd", kOneBody);
  const QLatin1String option(GetParam());
  ASSERT_EQ(runBatch({"-n", "5", option, path("regular"), world}).exitCode, 0);
  const std::string expected = contents(path("regular")).toStdString();

  const QByteArray fifo = QFile::encodeName(path("fifo"));
  ASSERT_EQ(mkfifo(fifo.constData(), 0600), 0);
  const int reader = open(fifo.constData(), O_RDONLY | O_NONBLOCK);
  QProcess process;
  process.start(QStringLiteral(ORRENVALE_BATCH), {"-n", "5", option, path("fifo"), world});
  EXPECT_EQ(drainFifo(reader).toStdString(), expected);
  close(reader);
  ASSERT_TRUE(process.waitForFinished(60000));
  EXPECT_EQ(process.exitCode(), 0);
  struct stat st {};
  EXPECT_TRUE(stat(fifo.constData(), &st) == 0 && S_ISFIFO(st.st_mode));

  // /proc/self/fd/1 is where /dev/stdout leads; unlike /dev/stdout it
  // cannot be replaced, even by a faulty runner run as root.
  const ProgramRun run = runBatch({"-n", "5", option, "/proc/self/fd/1", world});
  EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
  EXPECT_EQ(run.out.toStdString(), expected);
}

INSTANTIATE_TEST_SUITE_P(Batch, BatchTargets, ::testing::Values("--log", "--save"),
                         [](const auto& p) { return std::string(p.param + 2); });

enum class Fault { MissingFolder, FileSizeLimit, FullFileSystem, ReadOnlyFileSystem, FullDevice };

class BatchWriteFaults : public Batch,
                         public ::testing::WithParamInterface<std::tuple<const char*, Fault>> {
 protected:
  void TearDown() override {
    if (!mounted_.isEmpty()) {
      umount2(mounted_.constData(), MNT_DETACH);
    }
  }

  QByteArray mounted_;
};

TEST_P(BatchWriteFaults, FailWithTheSystemsReasonAndLeaveTheTargetAsItWas) {
  const auto [option, fault] = GetParam();
  const QString world = write("world.ovd", hundredBodies());
  const QString folder = path("target");
  ASSERT_TRUE(QDir().mkpath(folder));
  QString target = folder + "/out";
  std::function<void()> childSetup;
  const char* reason = "No space left on device";
  if (fault == Fault::MissingFolder) {
    target = folder + "/absent/out";
    reason = "No such file or directory";
  } else if (fault == Fault::FileSizeLimit) {
    // SIGXFSZ keeps its default action: the runner must turn it into an error.
    childSetup = [] {
      const rlimit limit{32768, 32768};
      setrlimit(RLIMIT_FSIZE, &limit);
    };
    reason = "File too large";
  } else if (fault == Fault::FullDevice) {
    // Root gets a device of its own with the numbers of /dev/full, so that a
    // faulty runner could replace only that; others cannot replace /dev/full.
    target = geteuid() == 0 ? target : QStringLiteral("/dev/full");
    if (geteuid() == 0 &&
        mknod(QFile::encodeName(target).constData(), S_IFCHR | 0600, makedev(1, 7)) != 0) {
      GTEST_SKIP() << "cannot make a device here";
    }
  } else {
    // A file system of 32 KB on the folder; only root may mount one.
    if (geteuid() != 0 ||
        mount("tmpfs", QFile::encodeName(folder).constData(), "tmpfs", 0, "size=32k") != 0) {
      GTEST_SKIP() << "mounting a file system needs root";
    }
    mounted_ = QFile::encodeName(folder);
  }
  if (fault != Fault::FullDevice && fault != Fault::MissingFolder) {
    QFile old(target);
    ASSERT_TRUE(old.open(QIODevice::WriteOnly) && old.write("old\n") == 4);
  }
  if (fault == Fault::ReadOnlyFileSystem) {
    ASSERT_EQ(mount("tmpfs", mounted_.constData(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
    reason = "Read-only file system";
  }
  const ProgramRun run = runBatch({"-n", "50", QLatin1String(option), target, world}, childSetup);
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.err.toStdString(), QStringLiteral("orrenvale-batch: %1: cannot be written (%2)\n")
                                       .arg(target, QLatin1String(reason))
                                       .toStdString());
  if (fault == Fault::FullDevice) {
    struct stat st {};
    EXPECT_TRUE(stat(QFile::encodeName(target).constData(), &st) == 0 && S_ISCHR(st.st_mode));
  } else if (fault == Fault::MissingFolder) {
    EXPECT_TRUE(QDir(folder).isEmpty());
  } else {
    EXPECT_EQ(QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList{QStringLiteral("out")});
    EXPECT_EQ(contents(target), "old\n");
  }
}

std::string faultCaseName(const ::testing::TestParamInfo<std::tuple<const char*, Fault>>& info) {
  static const char* const kNames[] = {"MissingFolder", "FileSizeLimit", "FullFileSystem",
                                       "ReadOnlyFileSystem", "FullDevice"};
  return std::string(std::get<0>(info.param) + 2) +
         kNames[static_cast<int>(std::get<1>(info.param))];
}

INSTANTIATE_TEST_SUITE_P(
    Batch, BatchWriteFaults,
    ::testing::Combine(::testing::Values("--log", "--save"),
                       ::testing::Values(Fault::MissingFolder, Fault::FileSizeLimit,
                                         Fault::FullFileSystem, Fault::ReadOnlyFileSystem,
                                         Fault::FullDevice)),
    faultCaseName);

QByteArray hundredMegabytesOfBodies() {
  const QByteArray body = "<key>100</key><dict><key>Mass</key><real>1</real></dict>\n";
  return "<plist><dict><key>Bodies</key><dict>" + body.repeated(100 * 1024 * 1024 / body.size()) +
         "</dict></dict></plist>";
}

// Files the reader refuses, one it reads that is no datafile, one too large
// to read, and paths that are no regular file (the reader's own reasons are
// tested with the reader). A FIFO is refused without being opened: opening
// it would wait for a writer, and the run would hang here. A reason that ends
// with the line is the whole message.
TEST_F(Batch, BadWorldFileExitsWithOneAndOneLineNamingFileAndReason) {
  ASSERT_EQ(mkfifo(QFile::encodeName(path("fifo.ovd")).constData(), 0600), 0);
  const std::pair<QString, const char*> cases[] = {
      {write("empty.ovd", ""), "not valid XML: the document ends too early"},
      {write("cut.ovd", kOneBody.left(200)), "not valid XML: the document ends too early"},
      {write("array.ovd", "<plist><array/></plist>"),
       "not a datafile: the property list holds an array, not a dictionary\n"},
      {write("huge.ovd", hundredMegabytesOfBodies()), "too large"},
      {path("absent.ovd"), "no such file\n"},
      {dir_.path(), "is a directory\n"},
      {path("fifo.ovd"), "not a regular file\n"},
      {QStringLiteral("/dev/null"), "not a regular file\n"}};
  for (const auto& [file, reason] : cases) {
    const ProgramRun run = runBatch({file});
    EXPECT_EQ(run.exitCode, 1) << file.toStdString();
    EXPECT_TRUE(run.err.startsWith(QStringLiteral("orrenvale-batch: %1: %2").arg(file, reason)))
        << run.err.toStdString();
    EXPECT_EQ(run.err.count(u'\n'), 1) << run.err.toStdString();
    EXPECT_TRUE(run.out.isEmpty());
  }
}

struct Usage {
  const char* name;
  QStringList args;
  const char* message;
};

class BatchUsage : public ::testing::TestWithParam<Usage> {};

TEST_P(BatchUsage, ErrorsExitWithTwoAndShowTheUsage) {
  const ProgramRun run = runBatch(GetParam().args);
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_TRUE(
      run.err.startsWith(QStringLiteral("orrenvale-batch: ") + QLatin1String(GetParam().message)))
      << run.err.toStdString();
  EXPECT_TRUE(run.err.contains(QStringLiteral("Usage: orrenvale-batch [OPTIONS] WORLD.ovd")));
}

INSTANTIATE_TEST_SUITE_P(
    Batch, BatchUsage,
    ::testing::Values(
        Usage{"NoWorld", {}, "no world file given"},
        Usage{"TwoWorlds", {"a.ovd", "b.ovd"}, "more than one world file given"},
        Usage{"UnknownOption", {"--fast", "a.ovd"}, "unknown option '--fast'"},
        Usage{"StepsMissing", {"a.ovd", "-n"}, "option '-n' needs a number"},
        Usage{"StepsNegative", {"-n", "-3", "a.ovd"}, "'-3' is not a number of steps"},
        Usage{"StepsNotANumber", {"--steps=ten", "a.ovd"}, "'ten' is not a number"},
        Usage{"LogWithoutFile", {"a.ovd", "--log"}, "option '--log' needs a file name"},
        Usage{"FlagWithValue", {"--summary=yes", "a.ovd"}, "option '--summary' takes no value"}),
    [](const auto& p) { return std::string(p.param.name); });

// Two point bodies falling almost straight at each other with a time step
// of 100: the adaptive step refines for hours.
const QByteArray kLongStep = R"(<plist version="1.0"><dict>
  <key>Time step</key><real>100</real><key>Adaptive time stepping</key><true/>
  <key>Gravitational constant</key><real>1</real><key>Bodies</key><dict>
    <key>100</key><dict><key>Position X</key><real>1</real><key>Velocity Y</key><real>0.05</real>
      <key>Radius</key><real>0</real></dict>
    <key>101</key><dict><key>Position X</key><real>-1</real><key>Velocity Y</key><real>-0.05</real>
      <key>Radius</key><real>0</real></dict></dict>
</dict></plist>
)";

TEST_F(Batch, CtrlCInALongStepShowsProgressAndLeavesEveryFileAsItWas) {
  const QString log = write("log.txt", "old log\n");
  QProcess process;
  process.start(QStringLiteral(ORRENVALE_BATCH),
                {"-n", "3", "--log", log, "--save", path("out.ovd"), write("long.ovd", kLongStep)});
  // The step reports where it stands within half a second or so.
  QByteArray err;
  ASSERT_TRUE(QTest::qWaitFor(
      [&] {
        process.waitForReadyRead(50);
        err += process.readAllStandardError();
        return err.contains("step 1: Refining the time step");
      },
      30000))
      << err.toStdString();
  ::kill(static_cast<pid_t>(process.processId()), SIGINT);
  ASSERT_TRUE(process.waitForFinished(30000));
  err += process.readAllStandardError();
  EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
  EXPECT_EQ(process.exitCode(), 128 + SIGINT);
  EXPECT_TRUE(err.endsWith("orrenvale-batch: interrupted in step 1 of 3; nothing was saved\n"))
      << err.toStdString();
  EXPECT_EQ(contents(log), "old log\n");
  // No save, and no temporary file left beside either target.
  EXPECT_EQ(QDir(dir_.path()).entryList(QDir::Files | QDir::Hidden).size(), 2)
      << QDir(dir_.path()).entryList(QDir::Files | QDir::Hidden).join(' ').toStdString();
}

TEST(ProgressBar, ShowsFractionRateAndTimeLeft) {
  EXPECT_EQ(ProgressBar::render(250, 1000, 2.0),
            "[#######-----------------------]  25%  250/1000 steps  125 steps/s  ETA 0:06");
  EXPECT_EQ(ProgressBar::render(1000, 1000, 4000.0),
            "[##############################] 100%  1000/1000 steps  0 steps/s  ETA 0:00");
}

}  // namespace

int main(int argc, char** argv) {
  QCoreApplication app(argc, argv);
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
