#pragma once

#include <gtest/gtest.h>

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <functional>

struct ProgramRun {
  int exitCode = -1;  // also when the program crashed or never finished
  QString out;
  QString err;
};

// Runs a program to its end. childSetup runs in the child between fork and
// exec. Generous time limit: the slowest run reads 32 MB under the
// sanitizers, or runs a job of four processes on two cores; processes of a
// job that disagree would wait for each other for ever.
inline ProgramRun runProgram(const QString& program, const QStringList& args,
                             const QProcessEnvironment& environment,
                             const std::function<void()>& childSetup = {}) {
  QProcess process;
  process.setProcessEnvironment(environment);
  process.setChildProcessModifier(childSetup);
  process.start(program, args);
  process.waitForFinished(120000);
  return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
          QString::fromUtf8(process.readAllStandardOutput()),
          QString::fromUtf8(process.readAllStandardError())};
}

inline QByteArray contents(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
}

// A scratch folder for the worlds a test runs and the files it writes.
class ScratchFolder : public ::testing::Test {
 protected:
  QString path(const QString& name) const { return dir_.filePath(name); }
  QString write(const QString& name, const QByteArray& content) {
    QFile file(path(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    return path(name);
  }

  QTemporaryDir dir_;
};
