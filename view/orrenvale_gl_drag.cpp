// Direct manipulation in design mode: Shift and the left button drag a body,
// or the tip of its velocity vector, in the pan plane.
#include <QKeyEvent>

#include "engine/world.h"
#include "orrenvale_gl.h"
#include "view_host.h"

namespace {

// How close to a velocity tip the pointer must be to take hold of it, in
// the view's own (device-independent) pixels.
constexpr double kTipGrabRadius = 6.0;

}  // namespace

std::optional<DragTarget> OrrenvaleGL::dragTargetUnder(QPointF p) const {
  if (!host_.editing()) {
    return std::nullopt;
  }
  return dragTargetAt(*v_, host_.world(), p.x(), p.y(), kTipGrabRadius * devicePixelRatio());
}

bool OrrenvaleGL::beginBodyDrag(Qt::KeyboardModifiers modifiers, QPointF p) {
  if (!modifiers.testFlag(Qt::ShiftModifier)) {
    return false;
  }
  const std::optional<DragTarget> target = dragTargetUnder(p);
  const Body* body = target ? host_.world().findBodyById(target->bodyId) : nullptr;
  if (body == nullptr) {
    return false;
  }
  dragger_.begin(*target, *body, host_.panType());
  // The grabbed body becomes the selection, so the body palette follows the
  // drag.
  v_->selectedBodyID = body->id;
  setCursor(target->kind == BodyDrag::Kind::Move ? Qt::ClosedHandCursor : Qt::CrossCursor);
  return true;
}

void OrrenvaleGL::updatePointerShape(bool shift) {
  if (dragger_.active()) {
    return;
  }
  const std::optional<DragTarget> target = shift ? dragTargetUnder(hover_) : std::nullopt;
  if (!target) {
    unsetCursor();
  } else if (target->kind == BodyDrag::Kind::Move) {
    setCursor(Qt::OpenHandCursor);
  } else {
    setCursor(Qt::CrossCursor);
  }
}

void OrrenvaleGL::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Shift) {
    updatePointerShape(true);
  } else if (event->key() == Qt::Key_Escape && dragger_.active()) {
    dragger_.cancel(host_.world());
    updatePointerShape(event->modifiers().testFlag(Qt::ShiftModifier));
    return;
  }
  QOpenGLWidget::keyPressEvent(event);
}

void OrrenvaleGL::keyReleaseEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Shift) {
    updatePointerShape(false);
  }
  QOpenGLWidget::keyReleaseEvent(event);
}
