#include "orrenvale_gl.h"

#include <GL/glu.h>

#include <QApplication>
#include <QMetaMethod>
#include <QOpenGLContext>
#include <QTimer>
#include <chrono>
#include <cmath>

#include "camera.h"
#include "engine/world.h"
#include "timer_pause.h"
#include "view_host.h"

namespace {

constexpr double kNearPlane = 1.0;
constexpr double kFarPlane = 1e10;

// Qt timers count whole milliseconds: 41 ms is the longest interval that
// still draws at least 24 frames a second.
constexpr std::chrono::milliseconds kRedrawTimerInterval{
    static_cast<int>(OrrenvaleGL::kRedrawInterval * 1000.0)};

}  // namespace

OrrenvaleGL::OrrenvaleGL(ViewHost& host, QWidget* parent) : QOpenGLWidget(parent), host_(host) {
  const int number = host_.world().takeViewNumber();
  v_ = std::make_unique<View>(number - World::kFirstViewNumber);
  // Key commands reach the view once its window is active.
  setFocusPolicy(Qt::StrongFocus);
  // Moves without a button pressed keep the pointer shape up to date.
  setMouseTracking(true);
  redrawTimer_ = new QTimer(this);
  redrawTimer_->setTimerType(Qt::PreciseTimer);
  redrawTimer_->setInterval(kRedrawTimerInterval);
  connect(redrawTimer_, &QTimer::timeout, this, &OrrenvaleGL::redrawWindow);
  redrawTimer_->start();
}

OrrenvaleGL::~OrrenvaleGL() {
  redrawTimer_->stop();
  // The base class destroys the context after this object is gone; the
  // context must not call back into it then.
  if (context() != nullptr) {
    disconnect(context(), nullptr, this, nullptr);
  }
  releaseOpenGL();
}

void OrrenvaleGL::initializeGL() {
  // A widget gets a new context when it moves to another window; the old
  // context's quadric and display list go with it.
  connect(context(), &QOpenGLContext::aboutToBeDestroyed, this, &OrrenvaleGL::releaseOpenGL);
}

void OrrenvaleGL::paintGL() {
  drawRect();
  if (isSignalConnected(QMetaMethod::fromSignal(&OrrenvaleGL::frameDrawn))) {
    emit frameDrawn(readFrame());
  }
}

void OrrenvaleGL::resizeGL(int /*w*/, int /*h*/) {}

void OrrenvaleGL::redrawWindow() {
  if (timersArePaused()) {
    return;
  }
  // Qt draws the frame at its next pass through the event loop, within the
  // same interval, and merges it with repaints the window system asks for.
  update();
}

void OrrenvaleGL::prepareOpenGL() {
  glEnable(GL_DEPTH_TEST);
  glEnable(GL_COLOR_MATERIAL);
  glEnable(GL_POLYGON_SMOOTH);
  glEnable(GL_LIGHTING);
  glEnable(GL_LIGHT0);
  // Every sphere is the unit sphere scaled by its radius, which scales its
  // normals too; renormalising keeps the shading the same at every radius.
  glEnable(GL_NORMALIZE);
  glHint(GL_PERSPECTIVE_CORRECTION_HINT, GL_NICEST);
  glHint(GL_LINE_SMOOTH_HINT, GL_NICEST);
  glHint(GL_POINT_SMOOTH_HINT, GL_NICEST);
  glHint(GL_POLYGON_SMOOTH_HINT, GL_NICEST);
  pObj = gluNewQuadric();
  sphereList = glGenLists(1);
  glNewList(sphereList, GL_COMPILE);
  drawUnitSphere();
  glEndList();
  glClearColor(0.0f, 0.0f, 0.0f, 0.0f);
}

void OrrenvaleGL::releaseOpenGL() {
  if (!fGLInit) {
    return;
  }
  makeCurrent();
  glDeleteLists(sphereList, 1);
  gluDeleteQuadric(pObj);
  pObj = nullptr;
  sphereList = 0;
  fGLInit = false;
  doneCurrent();
}

void OrrenvaleGL::drawRect() {
  const bool fresh = !fGLInit;
  if (fresh) {
    prepareOpenGL();
    fGLInit = true;
  }
  resizeGL();
  if (fresh) {
    // A new context holds no projection yet, even when the size already
    // equals the trackball's (as for a view restored with its window size).
    updateProjection();
  }
  updateModelView();
  // The world keeps the position of the body this view names with every
  // step's trace points from now on, so that its traces can be drawn
  // relative to that body whenever the user asks, with the history since.
  host_.world().traceFrames.watch(v_->trackBodyID);
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  render();
}

void OrrenvaleGL::resizeGL() {
  const qreal ratio = devicePixelRatio();
  const auto w = static_cast<float>(width() * ratio);
  const auto h = static_cast<float>(height() * ratio);
  Trackball& tb = *v_->trackball;
  if (static_cast<double>(h) == tb.height && static_cast<double>(w) == tb.width) {
    return;
  }
  tb.setSize(w, h);
  glViewport(0, 0, static_cast<GLsizei>(w), static_cast<GLsizei>(h));
  updateProjection();
}

void OrrenvaleGL::updateProjection() {
  // Before the first frame there is no context; that frame loads the
  // projection itself.
  if (context() == nullptr) {
    return;
  }
  makeCurrent();
  glMatrixMode(GL_PROJECTION);
  glLoadIdentity();
  multiplyFrustum();
  glMatrixMode(GL_MODELVIEW);
}

void OrrenvaleGL::multiplyFrustum() const {
  // A view without area (size not known yet) gets no frustum.
  if (const std::optional<FrustumExtent> e = frustumExtent(*v_->trackball)) {
    glFrustum(-e->right, e->right, -e->top, e->top, kNearPlane, kFarPlane);
  }
}

void OrrenvaleGL::updateModelView() {
  if (context() == nullptr) {
    return;
  }
  makeCurrent();
  glMatrixMode(GL_MODELVIEW);
  glLoadIdentity();
  View& v = *v_;
  trackView(v, host_.world());
  gluLookAt(v.cameraPosition.x, v.cameraPosition.y, v.cameraPosition.z, v.cameraFocus.x,
            v.cameraFocus.y, v.cameraFocus.z, 0.0, 1.0, 0.0);
  if (v.trackballEnabled) {
    glMultMatrixd(v.trackball->glMatrix().data());
  }
}

void OrrenvaleGL::keyPanUp() {
  pan(+1, true);
}
void OrrenvaleGL::keyPanDown() {
  pan(-1, true);
}
void OrrenvaleGL::keyPanLeft() {
  pan(-1, false);
}
void OrrenvaleGL::keyPanRight() {
  pan(+1, false);
}

void OrrenvaleGL::pan(int direction, bool vertical) {
  // The next frame of the redraw timer shows the result.
  panView(*v_, host_.panType(), vertical, direction);
}

void OrrenvaleGL::keyZoomIn() {
  zoomCamera(2.0);
}
void OrrenvaleGL::keyZoomOut() {
  zoomCamera(-2.0);
}

void OrrenvaleGL::zoomCamera(double z) {
  if (z == 0.0) {
    return;
  }
  zoomView(*v_, z);
  updateProjection();
  update();
}

QImage OrrenvaleGL::captureView() {
  if (context() == nullptr) {
    QImage image(static_cast<int>(width() * devicePixelRatio()),
                 static_cast<int>(height() * devicePixelRatio()), QImage::Format_RGBX8888);
    image.fill(Qt::black);
    return image;
  }
  makeCurrent();
  drawRect();
  QImage image = readFrame();
  doneCurrent();
  return image;
}

QImage OrrenvaleGL::readFrame() {
  const qreal ratio = devicePixelRatio();
  const int w = static_cast<int>(width() * ratio);
  const int h = static_cast<int>(height() * ratio);
  // Four bytes a pixel, red, green, blue and an unused byte: the layout
  // OpenGL reads back, so every row is 4 * w bytes.
  QImage image(w, h, QImage::Format_RGBX8888);
  if (image.isNull()) {
    return image;
  }
  // The frame is read from the view's own framebuffer right after drawing,
  // before Qt presents it, so it is the frame just drawn.
  glPixelStorei(GL_PACK_ALIGNMENT, 4);
  glReadPixels(0, 0, w, h, GL_RGBA, GL_UNSIGNED_BYTE, image.bits());
  // The alpha channel holds what was drawn with alpha (the background and the
  // axis marker with 0); the image has none, so the byte is set opaque.
  uchar* bytes = image.bits();
  for (qsizetype i = 3; i < image.sizeInBytes(); i += 4) {
    bytes[i] = 0xff;
  }
  // OpenGL returns the bottom row first. The rows are turned over here, once,
  // so that every use (file export, printing, movies) gets the view as it is
  // shown.
  image = std::move(image).mirrored();
  image.setDevicePixelRatio(ratio);
  return image;
}
