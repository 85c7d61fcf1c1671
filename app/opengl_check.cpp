#include "opengl_check.h"

#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QSurfaceFormat>

bool openGLIsUsable() {
  QOpenGLContext context;
  context.setFormat(QSurfaceFormat::defaultFormat());
  if (!context.create() || context.isOpenGLES()) {
    return false;
  }
  QOffscreenSurface surface;
  surface.setFormat(context.format());
  surface.create();
  if (!context.makeCurrent(&surface)) {
    return false;
  }
  const QSurfaceFormat format = context.format();
  const bool fixedFunction = format.profile() != QSurfaceFormat::CoreProfile;
  const bool version =
      format.majorVersion() > 1 || (format.majorVersion() == 1 && format.minorVersion() >= 1);
  context.doneCurrent();
  return fixedFunction && version;
}
