// Runs the view tests inside a real QApplication. Listing the tests needs no
// display, so the build can discover them without one.
#include <gtest/gtest.h>

#include <QApplication>

#include "view/surface_format.h"

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  if (GTEST_FLAG_GET(list_tests)) {
    return RUN_ALL_TESTS();
  }
  setDefaultSurfaceFormat();
  QApplication app(argc, argv);
  return RUN_ALL_TESTS();
}
