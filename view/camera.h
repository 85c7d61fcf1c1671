#pragma once

#include <optional>

class Trackball;
class View;
class World;

// Camera arithmetic of a view, apart from OpenGL. Positions are world units.

// Half of the 45-degree field of view of the narrower side, in radians.
inline constexpr double kHalfFieldOfView = 22.5 * 3.14159265 / 180.0;

// Half the width and height of the view's frustum on the near plane, which
// lies at distance 1: the narrower side spans 45 degrees, the aspect ratio
// formed in single precision. Nothing while the view has no area.
struct FrustumExtent {
  double right;
  double top;
};
std::optional<FrustumExtent> frustumExtent(const Trackball& tb);

// Points a tracking view's camera at the body it follows (when both modes are
// on, the body wins) or at the centre of mass, from cameraAutodistance behind
// it along the direction of motion, or along (1, 1, 1) when at rest. A tracked
// body that no longer exists clears trackBodyID and leaves the camera still.
void trackView(View& v, const World& world);

// Moves camera and focus together by 1/30 of their distance along the pan
// plane's horizontal or vertical axis, in the direction of sign (+1 or -1).
// A pan type other than the three planes moves nothing.
void panView(View& v, int panType, bool vertical, int sign);

// Zooms by z: a free camera moves a tenth of its distance towards the focus
// (z > 0) or away from it (z < 0); a tracking camera scales its distance by
// 1 - z/20.
void zoomView(View& v, double z);

// Moves camera and focus along the viewing direction by 1/20 of the vertical
// pointer travel since the right-button press, relative to the view height:
// downwards away from the scene, upwards towards it. yTop is the pointer
// position in pixels from the top.
void rightDragView(View& v, double yTop);
