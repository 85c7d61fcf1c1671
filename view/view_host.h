#pragma once

#include <cstdint>

struct BodyDrag;
struct PredictedPaths;
class World;

// Pan plane codes, as the application's pan-plane menu sets them.
inline constexpr int kPanTypeXY = -5;
inline constexpr int kPanTypeXZ = -4;
inline constexpr int kPanTypeYZ = -3;

// What a view needs from the application: the one world, the pan plane and
// the state of the simulation clock. The application hands it to each view
// it opens (a test hands its own). Deleting a body reaches the Body menu through the
// engine's BodyObserver, and the palettes read a view's selection on their
// own refresh timer. The operations with a body here have defaults that act
// on the world directly; the application overrides them to record the edits
// it can undo.
class ViewHost {
 public:
  virtual ~ViewHost() = default;
  virtual World& world() = 0;
  // One of the kPanType codes; any other value makes the pan commands move
  // nothing.
  virtual int panType() const = 0;
  virtual bool running() const = 0;
  // Design mode: bodies can be dragged, and predicted paths are shown.
  virtual bool editing() const { return false; }

  // The view's delete command and the body palette's delete button.
  virtual void deleteBody(int32_t id);
  // A drag has ended; the body already holds the new position or velocity.
  virtual void bodyDragged(const BodyDrag& /*drag*/) {}
  // The bodies' predicted paths for at least `horizon` units of simulated
  // time from the world as it stands, as far as they are known; null when
  // there are none to show.
  virtual const PredictedPaths* predictedPaths(double /*horizon*/) { return nullptr; }
};
