#include <gtest/gtest.h>
#include <signal.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

#include "batch_test_support.h"
#include "document/plist_writer.h"
#include "document/world_document.h"
#include "tests/engine/test_support.h"

// The runner started by mpirun with 1 to 4 processes must write exactly the
// bytes that the runner alone writes: the log with every real in full, the
// summary and the saved datafile.

namespace {

// Open MPI refuses to run as root (as CI does) unless told that it may. Its
// shared-memory transport copies between processes through ptrace where it
// can, which containers often forbid, and then complains on every transfer;
// plain copies avoid that.
// Under the sanitizers its leaks are suppressed by library name, which needs
// its plugins still loaded at exit and stacks unwound through its libraries,
// which are built without frame pointers.
QProcessEnvironment jobEnvironment() {
  QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
  env.insert(QStringLiteral("OMPI_ALLOW_RUN_AS_ROOT"), QStringLiteral("1"));
  env.insert(QStringLiteral("OMPI_ALLOW_RUN_AS_ROOT_CONFIRM"), QStringLiteral("1"));
  env.insert(QStringLiteral("OMPI_MCA_btl_vader_single_copy_mechanism"), QStringLiteral("none"));
  env.insert(QStringLiteral("OMPI_MCA_mca_base_component_disable_dlclose"), QStringLiteral("1"));
  if (env.contains(QStringLiteral("ASAN_OPTIONS"))) {
    env.insert(QStringLiteral("ASAN_OPTIONS"), env.value(QStringLiteral("ASAN_OPTIONS")) +
                                                   QStringLiteral(":fast_unwind_on_malloc=0"));
  }
  return env;
}

// -q keeps mpirun's own notices about failed processes out of the error
// output; --oversubscribe allows more processes than cores.
QStringList jobArgs(int processes, const QStringList& args) {
  return QStringList{"-q", "--oversubscribe", "-np", QString::number(processes), ORRENVALE_BATCH} +
         args;
}

ProgramRun runAlone(const QStringList& args) {
  return runProgram(QStringLiteral(ORRENVALE_BATCH), args, jobEnvironment());
}

ProgramRun runJob(int processes, const QStringList& args) {
  return runProgram(QStringLiteral(MPIEXEC), jobArgs(processes, args), jobEnvironment());
}

// Clusters of bodies in which some pairs touch at once and more come into
// contact within a few steps of 0.05, so that both collision passes of a
// step find pairs.
struct WorldCase {
  const char* name;
  int steps;
  void (*make)(World&);
};

const WorldCase kWorlds[] = {
    {"Merging", 40, [](World& w) { addRandomCluster(w, 60, 10.0, 1); }},
    {"Rebounding", 40,
     [](World& w) {
       addRandomCluster(w, 60, 10.0, 2);
       w.merge = false;
       w.restitution = 0.5;
     }},
    // The energy test refines down to its 1e-8 bound on the divided step: a
    // step of 1e-7 keeps that to four levels.
    {"AdaptiveMerging", 4,
     [](World& w) {
       addRandomCluster(w, 70, 10.0, 3);
       w.adaptive = true;
       w.timeStep = 1e-7;
     }},
    // Massless bodies, coincident bodies, bodies within 1e-12 of each other:
    // forces are skipped, rebound normals vanish, and two massless bodies
    // that touch get velocities that are not numbers (bodies 0 and 5).
    {"Guarded", 10,
     [](World& w) {
       addRandomCluster(w, 40, 10.0, 4);
       w.merge = false;
       int k = 0;
       forEachItem<Body>(*w.bodies, [&](Body& b) {
         if (k % 5 == 0) {
           b.mass = k % 10 == 0 ? 0.0 : -0.0;
         } else if (k % 5 == 1) {
           b.position = Vector::of(1.0, 2.0, 3.0 + (k % 3 == 0 ? 5e-13 : 0.0));
         }
         if (k == 0 || k == 5) {
           b.position = Vector::of(-4.0, 0.0, 0.0);
         }
         ++k;
       });
     }},
    {"ThousandBodies", 6, [](World& w) { addRandomCluster(w, 1000, 40.0, 5); }},
    {"FewerBodiesThanProcesses", 20, [](World& w) { addRandomCluster(w, 3, 1.0, 6); }},
    {"NoBodies", 3, [](World&) {}},
};

class Job : public ScratchFolder {
 protected:
  QString writeWorld(const WorldCase& c) {
    World world;
    world.timeStep = 0.05;
    c.make(world);
    const QString file = path(QLatin1String(c.name) + QStringLiteral(".ovd"));
    EXPECT_TRUE(writePlistFile(file, PlistValue(saveWorldToDict(world, DocumentSections{}))));
    return file;
  }
};

class JobWorlds : public Job, public ::testing::WithParamInterface<WorldCase> {};

// The runner reports a step that takes longer than about half a second on
// standard error; how long a step takes depends on the machine, not on the
// job, so those lines are left out of the comparison.
QString withoutStepProgress(QString err) {
  return err.remove(QRegularExpression(QStringLiteral("^orrenvale-batch: step \\d+: .*\n"),
                                       QRegularExpression::MultilineOption));
}

TEST_P(JobWorlds, OneToFourProcessesWriteTheBytesOfTheRunnerAlone) {
  const QString world = writeWorld(GetParam());
  // No temporary path holds a '|'.
  const auto args = [&](const QString& tag) {
    return QStringLiteral("-n|%1|--exact|--summary|--log|%2.log|--save|%2.ovd|%3")
        .arg(GetParam().steps)
        .arg(path(tag), world)
        .split(u'|');
  };
  const ProgramRun alone = runAlone(args(QStringLiteral("alone")));
  ASSERT_EQ(alone.exitCode, 0) << alone.err.toStdString();
  const QByteArray log = contents(path(QStringLiteral("alone.log")));
  const QByteArray saved = contents(path(QStringLiteral("alone.ovd")));
  for (int processes = 1; processes <= 4; ++processes) {
    SCOPED_TRACE(std::to_string(processes) + " processes");
    const QString tag = QStringLiteral("job%1").arg(processes);
    const ProgramRun job = runJob(processes, args(tag));
    ASSERT_EQ(job.exitCode, 0) << job.err.toStdString();
    EXPECT_EQ(withoutStepProgress(job.err), QString());
    EXPECT_EQ(job.out, alone.out);
    EXPECT_TRUE(contents(path(tag + QStringLiteral(".log"))) == log) << "the logs differ";
    EXPECT_EQ(contents(path(tag + QStringLiteral(".ovd"))), saved);
  }
}

INSTANTIATE_TEST_SUITE_P(Worlds, JobWorlds, ::testing::ValuesIn(kWorlds),
                         [](const auto& p) { return std::string(p.param.name); });

// Only the first process reads and writes; the others learn of a failure
// from it, before the steps or by the end of the job during them, so the job
// prints the reason once: a world that is missing or not a datafile, a log
// that fills the disk after a few steps.
TEST_F(Job, FailureEndsEveryProcessWithOneMessage) {
  const QString garbage = write(QStringLiteral("garbage.ovd"), "Time step = 0.1\n");
  const QString world = writeWorld(kWorlds[0]);
  for (const QStringList& args :
       {QStringList{path(QStringLiteral("absent.ovd"))}, QStringList{garbage},
        QStringList{QStringLiteral("-n1000"), QStringLiteral("--log=/dev/full"), world}}) {
    const ProgramRun alone = runAlone(args);
    const ProgramRun job = runJob(3, args);
    EXPECT_EQ(job.exitCode, 1);
    EXPECT_EQ(job.err, alone.err);
    EXPECT_EQ(job.err.count('\n'), 1) << job.err.toStdString();
    EXPECT_TRUE(job.out.isEmpty());
  }
}

// mpirun ends the whole job when one process dies; the datafile that --save
// names is written only after the last step and through a temporary file, so
// nothing is left in its place.
TEST_F(Job, KilledProcessEndsTheJobAndLeavesNoSave) {
  const QString world = writeWorld(kWorlds[4]);
  const QString saved = path(QStringLiteral("saved.ovd"));
  QProcess mpirun;
  mpirun.setProcessEnvironment(jobEnvironment());
  mpirun.start(MPIEXEC, jobArgs(2, {"-n", "100000", "--progress", "--save", saved, world}));
  ASSERT_TRUE(mpirun.waitForStarted());
  // Mid-run: both processes are there and the first reports its progress.
  QStringList children;
  ASSERT_TRUE(QTest::qWaitFor(
      [&] {
        const QString tasks = QStringLiteral("/proc/%1/task").arg(mpirun.processId());
        children.clear();
        for (const QString& task : QDir(tasks).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
          QFile file(tasks + '/' + task + QStringLiteral("/children"));
          if (file.open(QIODevice::ReadOnly))
            children += QString::fromLatin1(file.readAll()).split(' ', Qt::SkipEmptyParts);
        }
        return children.size() == 2 && !mpirun.readAllStandardError().isEmpty();
      },
      60000));
  ASSERT_EQ(::kill(children.last().toInt(), SIGKILL), 0);
  ASSERT_TRUE(mpirun.waitForFinished(60000));
  EXPECT_TRUE(mpirun.exitStatus() != QProcess::NormalExit || mpirun.exitCode() != 0);
  EXPECT_EQ(QDir(dir_.path()).entryList(QDir::Files), QStringList{"ThousandBodies.ovd"});
}

}  // namespace

int main(int argc, char** argv) {
  QCoreApplication app(argc, argv);
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
