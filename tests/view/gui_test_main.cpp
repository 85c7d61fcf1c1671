// Runs the view tests inside a real QApplication. Listing the tests needs no
// display, so the build can discover them without one.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <link.h>

#include <QApplication>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <cstring>

#include "view/surface_format.h"

namespace {

// Mesa unloads its driver when the last display connection closes, before
// the leak checker reports. Leaks inside the driver would then be reported
// from an unknown module that no suppression can name; keeping the driver
// mapped until exit lets tests/lsan.supp match it by name.
void keepGraphicsDriverLoaded() {
  QOffscreenSurface surface;
  surface.create();
  QOpenGLContext context;
  if (!context.create() || !context.makeCurrent(&surface)) {
    return;
  }
  dl_iterate_phdr(
      [](dl_phdr_info* info, size_t, void*) {
        if (info->dlpi_name != nullptr && std::strstr(info->dlpi_name, "_dri.so") != nullptr) {
          dlopen(info->dlpi_name, RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE);
        }
        return 0;
      },
      nullptr);
  context.doneCurrent();
}

}  // namespace

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  if (GTEST_FLAG_GET(list_tests)) {
    return RUN_ALL_TESTS();
  }
  setDefaultSurfaceFormat();
  QApplication app(argc, argv);
  keepGraphicsDriverLoaded();
  return RUN_ALL_TESTS();
}
