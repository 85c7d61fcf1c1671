#include <gtest/gtest.h>

#include <QApplication>

// The palettes are real widgets: the tests need a QApplication on a display
// (Xvfb under CI). Listing the tests needs none.
int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (GTEST_FLAG_GET(list_tests)) {
    return RUN_ALL_TESTS();
  }
  QApplication app(argc, argv);
  return RUN_ALL_TESTS();
}
