#pragma once

class View;
class World;

// Camera arithmetic of a view, apart from OpenGL. Positions are world units.

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
