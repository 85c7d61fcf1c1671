#pragma once

#include <cstdint>

#include "list_storable.h"
#include "names.h"
#include "vector.h"

class Body;

// Receives every construction (copies included) and destruction of a Body, so
// the application can keep one menu entry per body. The engine runs without
// one; install it with setBodyObserver.
//
// The observer belongs to the thread that installs it: bodies made and
// destroyed on any other thread (a world stepped on a worker thread to look
// ahead) tell no one, so the application's menu, which only its own thread
// may touch, never hears of them.
class BodyObserver {
 public:
  virtual ~BodyObserver() = default;
  // Called once the body's name is set, before the world sets its identifier.
  virtual void worldCreateBody(Body& body) = 0;
  // Called before any field of the body is destroyed.
  virtual void worldDeleteBody(Body& body) = 0;
};

// Per thread; null (the default) means no one is told.
void setBodyObserver(BodyObserver* observer);
BodyObserver* bodyObserver();

// One simulated sphere. Views, palettes and the datafile code read and write
// the fields directly.
class Body : public ListStorable {
 public:
  // Named "Body %i" with the creation number; the world sets the identifier.
  explicit Body(int creationNumber);
  // Copies the state but not the acceleration and integrator scratch fields,
  // which start at zero.
  Body(const Body& other);
  Body& operator=(const Body&) = delete;
  ~Body() override;

  void clearForces() { force.zero(); }
  void addForce(const Vector& f) { force += f; }
  // force / mass, the zero vector when |mass| <= 1e-12.
  Vector computeAcceleration() const { return force / mass; }

  Vector position;
  Vector velocity;
  Vector acceleration;
  Vector force;
  Vector stageVelocity[4];
  Vector stageAcceleration[4];
  Vector startPosition;
  Vector startVelocity;
  double radius = 1.0;
  double mass = 1.0;
  char name[kNameSize] = {};
  int32_t id = 0;
  float color[3] = {0.5f, 0.5f, 0.5f};
  bool active = true;
  bool traceEnable = false;
  bool showVectors = true;
};
