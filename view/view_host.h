#pragma once

class World;

// Pan plane codes, as the application's pan-plane menu sets them.
inline constexpr int kPanTypeXY = -5;
inline constexpr int kPanTypeXZ = -4;
inline constexpr int kPanTypeYZ = -3;

// What a view needs from the application: the one world, the pan plane and
// the state of the simulation clock. The application controller implements
// it; views reach it only through viewHost(), so nothing else keeps a pointer
// to the controller. Views tell the application nothing directly: deleting a
// body reaches the Body menu through the engine's BodyObserver, and the
// palettes read a view's selection on their own refresh timer.
class ViewHost {
 public:
  virtual ~ViewHost() = default;
  virtual World& world() = 0;
  // One of the kPanType codes; any other value makes the pan commands move
  // nothing.
  virtual int panType() const = 0;
  virtual bool running() const = 0;
};

// Process-wide; null until the application (or a test) installs its host.
void setViewHost(ViewHost* host);
ViewHost* viewHost();
