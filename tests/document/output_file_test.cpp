#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>
#include <cstdio>

#include "document/output_file.h"

namespace {

// Formats such as MP4 go back to fill in sizes once the rest is written; the
// file keeps its temporary name until the commit.
TEST(OutputFile, SeekRewritesTheNewFileBeforeItTakesItsName) {
  QTemporaryDir dir;
  const QString path = dir.filePath("out.bin");
  OutputFile out;
  ASSERT_TRUE(out.open(path, FifoOpen::FailWithoutReader));
  ASSERT_TRUE(out.write(QByteArray("size=????;data")));
  EXPECT_EQ(out.seek(5, SEEK_SET), 5);
  ASSERT_TRUE(out.write(QByteArray("0014")));
  EXPECT_EQ(out.seek(0, SEEK_END), 14);
  EXPECT_FALSE(QFile::exists(path));
  ASSERT_TRUE(out.commit());
  QFile written(path);
  ASSERT_TRUE(written.open(QIODevice::ReadOnly));
  EXPECT_EQ(written.readAll(), "size=0014;data");
}

// A device or a FIFO is written as a stream, which cannot go back; after
// the failure nothing more is written.
TEST(OutputFile, StreamCannotSeek) {
  OutputFile out;
  ASSERT_TRUE(out.open("/dev/null", FifoOpen::FailWithoutReader));
  EXPECT_EQ(out.seek(0, SEEK_SET), -1);
  EXPECT_EQ(out.errorString(), "Illegal seek");
  EXPECT_FALSE(out.write(QByteArray("more")));
}

}  // namespace
