// Picking, pointer handlers and the selection commands.
#include <GL/glu.h>

#include <QMouseEvent>
#include <QWheelEvent>
#include <array>
#include <climits>

#include "camera.h"
#include "engine/world.h"
#include "orrenvale_gl.h"
#include "selection_hits.h"
#include "view_host.h"

namespace {

// Room for the hit records of one pick; more hits than fit select nothing.
constexpr int kSelectBufferWords = 16;
// Side of the square pick region centred on the pointer, pixels.
constexpr double kPickRegion = 0.1;
// A wheel reports 120 units per notch; the view zooms by whole notches.
constexpr int kWheelUnitsPerNotch = 120;

bool controlDown(const QMouseEvent& event) {
  return event.modifiers().testFlag(Qt::ControlModifier);
}

}  // namespace

int OrrenvaleGL::pick(double x, double yTop) {
  // Nothing has been drawn before the first frame, so nothing can be hit.
  if (!fGLInit || context() == nullptr) {
    return 0;
  }
  // Selection goes to whichever context is current, and with several view
  // windows that may be another view's.
  makeCurrent();
  std::array<GLuint, kSelectBufferWords> buffer{};
  glSelectBuffer(kSelectBufferWords, buffer.data());
  GLint viewport[4] = {};
  glGetIntegerv(GL_VIEWPORT, viewport);
  glMatrixMode(GL_PROJECTION);
  glPushMatrix();
  glRenderMode(GL_SELECT);
  glLoadIdentity();
  gluPickMatrix(x, viewport[3] - yTop, kPickRegion, kPickRegion, viewport);
  multiplyFrustum();
  // The model-view matrix stays the one the last frame loaded.
  glMatrixMode(GL_MODELVIEW);
  glInitNames();
  render();
  const GLint hits = glRenderMode(GL_RENDER);
  glMatrixMode(GL_PROJECTION);
  glPopMatrix();
  glMatrixMode(GL_MODELVIEW);
  doneCurrent();
  return static_cast<int>(farthestNamedHit(buffer.data(), kSelectBufferWords, hits));
}

QPointF OrrenvaleGL::pointerPosition(const QMouseEvent& event) const {
  const qreal ratio = devicePixelRatio();
  return {event.position().x() * ratio,
          static_cast<double>(static_cast<float>(event.position().y() * ratio))};
}

void OrrenvaleGL::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) {
    mouseDown(*event);
  } else if (event->button() == Qt::RightButton) {
    rightMouseDown(*event);
  }
}

void OrrenvaleGL::mouseMoveEvent(QMouseEvent* event) {
  if (event->buttons() == Qt::NoButton) {
    hover_ = pointerPosition(*event);
    updatePointerShape(event->modifiers().testFlag(Qt::ShiftModifier));
    return;
  }
  if (event->buttons().testFlag(Qt::LeftButton)) {
    mouseDragged(*event);
  }
  if (event->buttons().testFlag(Qt::RightButton)) {
    rightMouseDragged(*event);
  }
}

void OrrenvaleGL::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) {
    mouseUp(*event);
  } else if (event->button() == Qt::RightButton) {
    rightMouseUp(*event);
  }
}

void OrrenvaleGL::wheelEvent(QWheelEvent* event) {
  // The delta is counted in whole notches, truncated towards zero; what is
  // left over stays for the next event, so many small deltas add up to the
  // notches they make together.
  const int units = wheelRemainder_ + event->angleDelta().y();
  const int notches = units / kWheelUnitsPerNotch;
  wheelRemainder_ = units % kWheelUnitsPerNotch;
  if (notches != 0) {
    zoomCamera(static_cast<double>(notches));
  }
  event->accept();
}

void OrrenvaleGL::mouseDown(const QMouseEvent& event) {
  // A Ctrl-click starts no rotation, so the left-button calls that follow it
  // find no drag in progress.
  if (controlDown(event)) {
    rightMouseDown(event);
    return;
  }
  const QPointF p = pointerPosition(event);
  if (beginBodyDrag(event.modifiers(), p)) {
    return;
  }
  // A click always replaces the selection; on empty space it clears it.
  v_->selectedBodyID = pick(p.x(), p.y());
  if (v_->trackballEnabled) {
    v_->trackball->beginDrag(p.x(), p.y());
  }
}

void OrrenvaleGL::mouseDragged(const QMouseEvent& event) {
  if (dragger_.active()) {
    const QPointF p = pointerPosition(event);
    dragger_.drag(*v_, host_.world(), p.x(), p.y());
    return;
  }
  if (controlDown(event)) {
    rightMouseDragged(event);
  }
  const QPointF p = pointerPosition(event);
  if (v_->trackballEnabled) {
    v_->trackball->drag(p.x(), p.y());
  }
}

void OrrenvaleGL::mouseUp(const QMouseEvent& event) {
  if (dragger_.active()) {
    // One record per drag, which the application may keep for undo.
    const std::optional<BodyDrag> drag = dragger_.end();
    if (drag) {
      host_.bodyDragged(*drag);
    }
    hover_ = pointerPosition(event);
    updatePointerShape(event.modifiers().testFlag(Qt::ShiftModifier));
    return;
  }
  if (controlDown(event)) {
    rightMouseUp(event);
  }
  const QPointF p = pointerPosition(event);
  if (v_->trackballEnabled) {
    v_->trackball->endDrag(p.x(), p.y());
  }
}

void OrrenvaleGL::rightMouseDown(const QMouseEvent& event) {
  if (!v_->trackballEnabled) {
    return;
  }
  const QPointF p = pointerPosition(event);
  Trackball& tb = *v_->trackball;
  tb.zoomStartX = p.x();
  tb.zoomStartY = p.y();
  tb.zooming = true;
}

void OrrenvaleGL::rightMouseDragged(const QMouseEvent& event) {
  if (!v_->trackballEnabled || !v_->trackball->zooming) {
    return;
  }
  rightDragView(*v_, pointerPosition(event).y());
}

void OrrenvaleGL::rightMouseUp(const QMouseEvent& /*event*/) {
  if (v_->trackballEnabled) {
    v_->trackball->zooming = false;
  }
}

// Both walks visit identifiers in numeric order, wrapping between 100 (the
// first identifier the world gives) and nextBodyId - 1, and stop at the first
// that names a body. They are computed from the bodies' identifiers instead of
// stepping one number at a time, so a long run of deleted identifiers costs
// nothing. If no body has an identifier in the walked range (possible only
// with identifiers read from a file), the selection stays as it is instead of
// walking forever.
void OrrenvaleGL::keySelectNext() {
  World* world = &host_.world();
  if (world->bodies->count() <= 0) {
    return;
  }
  const int selected = v_->selectedBodyID;
  const int last = world->nextBodyId - 1;
  int after = INT_MAX;   // the smallest identifier in (selected, last]
  int lowest = INT_MAX;  // the smallest identifier in [100, last]
  forEachItem<Body>(*world->bodies, [&](const Body& b) {
    if (b.id > selected && b.id <= last && b.id < after) {
      after = b.id;
    }
    if (b.id >= World::kFirstBodyId && b.id <= last && b.id < lowest) {
      lowest = b.id;
    }
  });
  if (after != INT_MAX) {
    v_->selectedBodyID = after;
  } else if (lowest != INT_MAX) {
    v_->selectedBodyID = lowest;
  }
}

void OrrenvaleGL::keySelectPrev() {
  World* world = &host_.world();
  if (world->bodies->count() <= 0) {
    return;
  }
  const int selected = v_->selectedBodyID;
  const int last = world->nextBodyId - 1;
  int before = INT_MIN;   // the largest identifier in [100, selected)
  int highest = INT_MIN;  // the largest identifier in [100, last]
  forEachItem<Body>(*world->bodies, [&](const Body& b) {
    if (b.id >= World::kFirstBodyId && b.id < selected && b.id > before) {
      before = b.id;
    }
    if (b.id >= World::kFirstBodyId && b.id <= last && b.id > highest) {
      highest = b.id;
    }
  });
  // From 100 or below the walk starts again at the top.
  if (selected > World::kFirstBodyId && before != INT_MIN) {
    v_->selectedBodyID = before;
  } else if (highest != INT_MIN) {
    v_->selectedBodyID = highest;
  }
}

void OrrenvaleGL::keyDelete() {
  // The selection keeps the deleted identifier, which from now on names no
  // body. The engine tells the application, which drops the body's menu item.
  if (const Body* body = host_.world().findBodyById(v_->selectedBodyID)) {
    host_.deleteBody(body->id);
  }
}
