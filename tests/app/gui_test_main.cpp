// Runs GUI tests inside a real QApplication with the program's OpenGL
// surface format; under CI the display is Xvfb.
#include <gtest/gtest.h>

#include <QApplication>

#include "view/surface_format.h"

int main(int argc, char** argv) {
  setDefaultSurfaceFormat();
  QApplication app(argc, argv);
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
