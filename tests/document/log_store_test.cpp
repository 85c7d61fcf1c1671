#include "document/log_store.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace {

// About 3 MiB in lines of varied length: the store's memory buffer (1 MiB)
// fills and spills to its file several times.
std::string someLines() {
  std::string lines;
  for (int i = 0; lines.size() < 3u << 20; ++i)
    lines += std::to_string(i) + std::string(static_cast<std::size_t>(i % 97), 'x') + "\n";
  return lines;
}

TEST(LogStore, KeepsEveryLineThroughItsFileAndForgetsThemOnClear) {
  const std::string lines = someLines();
  LogStore store;
  for (std::size_t at = 0; at < lines.size();) {
    const std::size_t end = lines.find('\n', at) + 1;
    ASSERT_TRUE(store.append(std::string_view(lines).substr(at, end - at)));
    at = end;
  }
  EXPECT_EQ(store.byteCount(), static_cast<int64_t>(lines.size()));
  EXPECT_EQ(store.lineCount(), std::count(lines.begin(), lines.end(), '\n'));
  EXPECT_EQ(store.contents(), lines);
  std::string copy;
  ASSERT_TRUE(store.copyTo([&](const char* data, std::size_t size) {
    copy.append(data, size);
    return true;
  }));
  EXPECT_EQ(copy, lines);

  store.clear();
  EXPECT_EQ(store.lineCount(), 0);
  EXPECT_TRUE(store.contents().empty());
  ASSERT_TRUE(store.append("after\n"));
  EXPECT_EQ(store.contents(), "after\n");
}

TEST(LogStore, FileThatCannotBeMadeStopsTheLogWithTheSystemsReason) {
  LogStore store(QStringLiteral("/nonexistent-orrenvale-folder"));
  const std::string lines = someLines();
  EXPECT_FALSE(store.append(lines));
  EXPECT_EQ(store.error(), QStringLiteral("No such file or directory"));
  EXPECT_FALSE(store.append("more\n"));
  EXPECT_EQ(store.lineCount(), 0);
  EXPECT_TRUE(store.contents().empty());
}

}  // namespace
