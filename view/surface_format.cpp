#include "surface_format.h"

#include <QSurfaceFormat>

void setDefaultSurfaceFormat() {
  QSurfaceFormat format;
  format.setRenderableType(QSurfaceFormat::OpenGL);
  format.setProfile(QSurfaceFormat::CompatibilityProfile);
  // 24 rather than the minimum 16 bits: the far plane lies at 1e10, and the
  // extra bits keep nearby spheres from cutting into each other.
  format.setDepthBufferSize(24);
  format.setSwapBehavior(QSurfaceFormat::DoubleBuffer);
  // The capture reads the view's framebuffer directly, which must not be
  // multisampled.
  format.setSamples(0);
  QSurfaceFormat::setDefaultFormat(format);
}
