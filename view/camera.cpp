#include "camera.h"

#include <cmath>

#include "engine/world.h"
#include "view.h"
#include "view_host.h"

namespace {

// Camera position cameraAutodistance behind the focus along the direction d.
void lookAlong(View& v, const Vector& focus, const Vector& motion) {
  v.cameraFocus = focus;
  Vector d = normalized(motion);
  if (d.isZero()) {
    d = Vector(1.0);
  }
  v.cameraPosition = focus + (-v.cameraAutodistance) * d;
}

}  // namespace

std::optional<FrustumExtent> frustumExtent(const Trackball& tb) {
  const double t = std::tan(kHalfFieldOfView);
  const float aspect = static_cast<float>(tb.width) / static_cast<float>(tb.height);
  if (!(aspect > 0.0f) || !std::isfinite(aspect)) {
    return std::nullopt;
  }
  if (aspect >= 1.0f) {
    return FrustumExtent{aspect * t, t};
  }
  return FrustumExtent{t, t / aspect};
}

void trackView(View& v, const World& world) {
  if (v.trackBody) {
    const Body* body = world.findBodyById(v.trackBodyID);
    if (body == nullptr) {
      v.trackBodyID = 0;
    } else {
      lookAlong(v, body->position, body->velocity);
    }
  } else if (v.trackCenterOfMass) {
    lookAlong(v, world.centerOfMass(), world.momentum());
  }
}

void panView(View& v, int panType, bool vertical, int sign) {
  const double step = (v.cameraPosition - v.cameraFocus).length() / 30.0;
  Vector h;
  Vector up;
  if (panType == kPanTypeXY) {
    h = Vector::of(step, 0.0, 0.0);
    up = Vector::of(0.0, step, 0.0);
  } else if (panType == kPanTypeXZ) {
    h = Vector::of(step, 0.0, 0.0);
    up = Vector::of(0.0, 0.0, step);
  } else if (panType == kPanTypeYZ) {
    h = Vector::of(0.0, step, 0.0);
    up = Vector::of(0.0, 0.0, step);
  }
  const Vector& d = vertical ? up : h;
  if (sign > 0) {
    v.cameraFocus += d;
    v.cameraPosition += d;
  } else {
    v.cameraFocus -= d;
    v.cameraPosition -= d;
  }
}

void zoomView(View& v, double z) {
  if (z == 0.0) {
    return;
  }
  if (v.trackCenterOfMass || v.trackBody) {
    // A zoom of 20 or more in one step would put the camera on or past the
    // followed point; such steps are ignored, so the camera always stays
    // behind what it follows.
    const double distance = v.cameraAutodistance + z * v.cameraAutodistance / (-20.0);
    if (distance > 0.0) {
      v.cameraAutodistance = distance;
    }
  } else {
    const Vector d = v.cameraPosition - v.cameraFocus;
    v.cameraPosition -= ((std::fabs(z) / z) * d) / 10.0;
  }
}

void rightDragView(View& v, double yTop) {
  Trackball& tb = *v.trackball;
  const auto dy = static_cast<float>(static_cast<float>(yTop) - tb.zoomStartY);
  const Vector d = v.cameraPosition - v.cameraFocus;
  const auto f = static_cast<float>((-dy / 20.0f) / tb.height);
  const Vector move = static_cast<double>(f) * d;
  v.cameraPosition -= move;
  v.cameraFocus -= move;
}
