#include "body_dragger.h"

#include <cmath>

#include "engine/world.h"
#include "view.h"
#include "view_host.h"
#include "view_ray.h"

namespace {

double& component(Vector& v, int axis) {
  return axis == 0 ? v.x : axis == 1 ? v.y : v.z;
}

double component(const Vector& v, int axis) {
  return axis == 0 ? v.x : axis == 1 ? v.y : v.z;
}

}  // namespace

std::optional<DragTarget> dragTargetAt(const View& v, const World& world, double x, double yTop,
                                       double tipRadius) {
  const std::optional<Ray> ray = pointerRay(v, x, yTop);
  if (!ray) {
    return std::nullopt;
  }
  std::optional<DragTarget> tip;
  double tipDistance = tipRadius;
  std::optional<DragTarget> body;
  double bodyDistance = 0.0;
  forEachItem<Body>(*world.bodies, [&](const Body& b) {
    const double radius = std::fabs(b.radius);
    if (v.showVectors && b.showVectors) {
      const Vector end = b.position + b.velocity;
      const std::optional<PixelPoint> at = projectToView(v, end);
      if (at) {
        const double d = std::hypot(at->x - x, at->yTop - yTop);
        const std::optional<Ray> tipRay = pointerRay(v, at->x, at->yTop);
        const bool outside = tipRay && !raySphereHit(*tipRay, b.position, radius);
        if (d <= tipDistance && outside) {
          tip = DragTarget{BodyDrag::Kind::Aim, b.id, end};
          tipDistance = d;
        }
      }
    }
    if (const std::optional<double> t = raySphereHit(*ray, b.position, radius)) {
      if (!body || *t < bodyDistance) {
        body = DragTarget{BodyDrag::Kind::Move, b.id, ray->origin + *t * ray->direction};
        bodyDistance = *t;
      }
    }
  });
  return tip ? tip : body;
}

void BodyDragger::begin(const DragTarget& target, const Body& body, int panType) {
  target_ = target;
  drag_.kind = target.kind;
  drag_.bodyId = body.id;
  drag_.before = target.kind == BodyDrag::Kind::Move ? body.position : body.velocity;
  drag_.after = drag_.before;
  normal_ = panType == kPanTypeYZ ? 0 : panType == kPanTypeXZ ? 1 : 2;
}

Vector* BodyDragger::draggedValue(World& world) const {
  Body* body = world.findBodyById(drag_.bodyId);
  if (body == nullptr) {
    return nullptr;
  }
  return drag_.kind == BodyDrag::Kind::Move ? &body->position : &body->velocity;
}

void BodyDragger::drag(const View& v, World& world, double x, double yTop) {
  Vector* value = target_ ? draggedValue(world) : nullptr;
  const std::optional<Ray> ray = pointerRay(v, x, yTop);
  if (value == nullptr || !ray) {
    return;
  }
  // Where the ray meets the plane through the grabbed point; a ray along the
  // plane or one that meets it behind the eye moves nothing.
  const double along = component(ray->direction, normal_);
  if (!(std::fabs(along) > Vector::kTolerance * ray->direction.length())) {
    return;
  }
  const double t = (component(target_->grabbed, normal_) - component(ray->origin, normal_)) / along;
  if (!(t > 0.0) || !std::isfinite(t)) {
    return;
  }
  const Vector at = ray->origin + t * ray->direction;
  for (int axis = 0; axis < 3; ++axis) {
    if (axis != normal_) {
      component(*value, axis) =
          component(drag_.before, axis) + (component(at, axis) - component(target_->grabbed, axis));
    }
  }
  drag_.after = *value;
}

std::optional<BodyDrag> BodyDragger::end() {
  const bool changed = target_ && !sameBits(drag_.before, drag_.after);
  target_.reset();
  return changed ? std::optional<BodyDrag>(drag_) : std::nullopt;
}

void BodyDragger::cancel(World& world) {
  if (Vector* value = target_ ? draggedValue(world) : nullptr) {
    *value = drag_.before;
  }
  target_.reset();
}
