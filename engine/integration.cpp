#include <algorithm>
#include <cmath>
#include <vector>

#include "distributed_passes.h"
#include "fast_pass.h"
#include "pair_force.h"
#include "tolerance.h"
#include "world.h"

namespace {
constexpr double kEnergyTolerance = kEngineTolerance;
constexpr double kMinimumSubstep = 1e-8;

LinkedList* copyBodies(const LinkedList& source) {
  auto* copy = new LinkedList;
  forEachItem<Body>(source, [&](const Body& b) { copy->append(new ListNode(new Body(b))); });
  return copy;
}
}  // namespace

void World::clearAllForces() {
  forEachItem<Body>(*bodies, [](Body& b) {
    if (b.active) {
      b.clearForces();
    }
  });
}

void World::computeForces() {
  if (distributed_ != nullptr) {
    distributed_->computeForces(*this);
  } else if (!fastPass_->computeForces(*bodies, gravitationalConstant)) {
    computeForcesPlain();
  }
}

void World::computeBlockForces(int begin, int end) {
  if (fastPass_->computeBlockForces(*bodies, gravitationalConstant, begin, end)) {
    return;
  }
  // The reference path has no block form: the whole pass runs, and the
  // accumulators outside the block get their values back.
  std::vector<Vector> before;
  forEachItem<Body>(*bodies, [&](const Body& b) { before.push_back(b.force); });
  computeForcesPlain();
  size_t k = 0;
  int active = 0;
  forEachItem<Body>(*bodies, [&](Body& b) {
    const bool inBlock = b.active && active >= begin && active < end;
    active += b.active ? 1 : 0;
    if (!inBlock) {
      b.force = before[k];
    }
    ++k;
  });
}

void World::computeForcesPlain() {
  const double minusG = -gravitationalConstant;
  forEachActivePair(*bodies, [minusG](Body& bi, Body& bj) {
    const Vector d = bi.position - bj.position;
    // A pair within 1e-12 (coincident bodies included) has no direction and
    // exerts no force; skipping it also keeps an infinite or undefined
    // magnitude from turning the zero direction into NaN.
    const PairForce<ScalarOps> pair =
        pairForce<ScalarOps>(d.x, d.y, d.z, minusG * bi.mass, bj.mass);
    if (!pair.keep) {
      return;
    }
    const Vector f = Vector::of(pair.x, pair.y, pair.z);
    bi.addForce(f);
    bj.addForce(-1.0 * f);
  });
}

bool World::integrate() {
  const double dt = timeStep;
  const double h = dt * 0.5;

  clearAllForces();
  computeForces();

  forEachItem<Body>(*bodies, [](Body& b) {
    b.startPosition = b.position;
    b.startVelocity = b.velocity;
    b.stageVelocity[0] = b.velocity;
    b.acceleration = b.computeAcceleration();
  });

  // Forward Euler prediction, used only to look for collisions: the new
  // velocity moves the position.
  forEachItem<Body>(*bodies, [dt](Body& b) {
    const Vector v = b.startVelocity + b.acceleration * dt;
    b.position = b.startPosition + v * dt;
    b.velocity = v;
  });
  if (collide()) {
    return true;
  }

  forEachItem<Body>(*bodies, [](Body& b) {
    b.position = b.startPosition;
    b.velocity = b.startVelocity;
  });

  // Stages 2 to 4: each sample is taken from the forces of the previous
  // positions, then the bodies move to the next trial positions.
  const double stageFactor[3] = {h, h, dt};
  for (int k = 0; k < 3; ++k) {
    const double f = stageFactor[k];
    forEachItem<Body>(*bodies, [k, f](Body& b) {
      b.stageAcceleration[k] = b.computeAcceleration();
      b.stageVelocity[k + 1] = b.startVelocity + f * b.stageAcceleration[k];
      b.position = b.startPosition + f * b.stageVelocity[k];
      b.clearForces();
    });
    computeForces();
  }

  forEachItem<Body>(*bodies, [dt](Body& b) {
    b.stageAcceleration[3] = b.computeAcceleration();
    b.position = b.startPosition +
                 (dt * (b.stageVelocity[0] + 2.0 * (b.stageVelocity[1] + b.stageVelocity[2]) +
                        b.stageVelocity[3])) /
                     6.0;
    b.velocity = b.startVelocity + (dt * (b.stageAcceleration[0] +
                                          2.0 * (b.stageAcceleration[1] + b.stageAcceleration[2]) +
                                          b.stageAcceleration[3])) /
                                       6.0;
    b.clearForces();
  });

  return collide();
}

namespace {

// Counts the integrations of an adaptive step and asks the monitor, if any,
// whether to go on about every kPairsPerCall pair evaluations.
class RefinementWatch {
 public:
  static constexpr double kPairsPerCall = 4096.0;

  RefinementWatch(StepMonitor* monitor, double dt, int n, int32_t bodies) : monitor_(monitor) {
    if (monitor_ == nullptr) {
      return;
    }
    const double pairs = std::max(1.0, 0.5 * bodies * (bodies - 1.0));
    stride_ = std::max(1.0, std::floor(kPairsPerCall / pairs));
    // The refinement's own loop, run on the time step alone: it ends at the
    // first substep below the bound (or when the division stops giving a
    // number), if the energies never agree.
    progress_.worstCase = 1.0;
    for (double substeps = n;; substeps *= 2.0) {
      progress_.worstCase += substeps;
      if (!(dt / substeps >= kMinimumSubstep)) {
        break;
      }
    }
  }

  void beginComparison(double substeps) { progress_.substeps = substeps; }

  // One integration done; false when the monitor cancels the step.
  bool integrated() {
    progress_.done += 1.0;
    if (monitor_ == nullptr || ++sinceCall_ < stride_) {
      return true;
    }
    sinceCall_ = 0.0;
    return monitor_->keepGoing(progress_);
  }

 private:
  StepMonitor* monitor_;
  StepProgress progress_;
  double stride_ = 1.0;
  double sinceCall_ = 0.0;
};

}  // namespace

// One step of the full time step is checked against n steps of a divided time
// step, both from the state on entry. When the relative energy difference is
// at least 1e-12 (and the divided step is still at least 1e-8) the check is
// refined: the n-substep result becomes the coarse result and is compared
// with 2n substeps, and so on. Every result covers exactly the time step on
// entry, so the bodies advance by the time step() adds to elapsedTime. The
// coarse result of the first comparison that agrees is kept; on the first
// level that is the single step, as without adaptive stepping.
//
// A monitor may cancel the step between two integrations: the world then
// goes back to the copies of the state on entry, with the accelerations the
// bodies had, and the time step on entry.
bool World::adaptiveStep(int n, StepMonitor* monitor) {
  const double dt = timeStep;
  LinkedList* entry = copyBodies(*bodies);
  if (monitor != nullptr) {
    entryAccelerations_.clear();
    forEachItem<Body>(*bodies,
                      [&](const Body& b) { entryAccelerations_.push_back(b.acceleration); });
  }
  RefinementWatch watch(monitor, dt, n, bodies->count());
  LinkedList* coarse = nullptr;
  const auto cancel = [&] {
    if (coarse != bodies) {
      delete coarse;
    }
    delete bodies;
    bodies = entry;
    std::size_t i = 0;
    forEachItem<Body>(*bodies, [&](Body& b) { b.acceleration = entryAccelerations_[i++]; });
    timeStep = dt;
    return false;
  };

  coarse = bodies;
  integrate();
  if (!watch.integrated()) {
    return cancel();
  }
  double coarseEnergy = energy();

  // Kept as a double: the loop ends by the substep bound long before a power
  // of two would overflow it, and a double cannot wrap.
  for (double substeps = n;; substeps *= 2.0) {
    watch.beginComparison(substeps);
    bodies = copyBodies(*entry);
    timeStep = dt / substeps;
    for (double i = 0.0; i < substeps; i += 1.0) {
      integrate();
      if (!watch.integrated()) {
        return cancel();
      }
    }
    const double fineEnergy = energy();
    LinkedList* fine = bodies;
    const bool refine =
        std::fabs(fineEnergy - coarseEnergy) / std::fabs(coarseEnergy) >= kEnergyTolerance &&
        timeStep >= kMinimumSubstep;
    if (!refine) {
      delete fine;
      bodies = coarse;
      break;
    }
    delete coarse;
    coarse = fine;
    coarseEnergy = fineEnergy;
  }

  delete entry;
  timeStep = dt;
  return true;
}

bool World::step(StepMonitor* monitor) {
  const int32_t added = appendTracePoints();
  if (adaptive) {
    if (!adaptiveStep(2, monitor)) {
      // The points this step added are the newest ones, at the tail.
      for (int32_t i = 0; i < added; ++i) {
        tracePoints->remove(tracePoints->tail());
      }
      if (added > 0) {
        traceFrames.dropNewest();
      }
      return false;
    }
  } else {
    integrate();
  }
  trimTracePoints();
  elapsedTime += timeStep;
  return true;
}

double World::energy() const {
  double kinetic = 0.0;
  double potential = 0.0;
  const double g = gravitationalConstant;
  for (ListNode* ni = bodies->head(); ni != nullptr; ni = ni->next) {
    auto* bi = static_cast<Body*>(ni->item());
    kinetic += dot(bi->mass * bi->velocity, bi->velocity);
    for (ListNode* nj = ni->next; nj != nullptr; nj = nj->next) {
      auto* bj = static_cast<Body*>(nj->item());
      potential += g * bi->mass * bj->mass / (bi->position - bj->position).length();
    }
  }
  return 0.5 * kinetic - potential;
}

Vector World::momentum() const {
  Vector p;
  forEachItem<Body>(*bodies, [&](const Body& b) { p += b.mass * b.velocity; });
  for (double* c : {&p.x, &p.y, &p.z}) {
    if (std::fabs(*c) < Vector::kTolerance) {
      *c = 0.0;
    }
  }
  return p;
}

Vector World::centerOfMass() const {
  Vector sum;
  double totalMass = 0.0;
  forEachItem<Body>(*bodies, [&](const Body& b) {
    sum += b.mass * b.position;
    totalMass += b.mass;
  });
  // In-place division: a total mass of at most 1e-12 leaves the weighted sum.
  sum /= totalMass;
  return sum;
}

Vector World::angularMomentum() const {
  const Vector r0 = centerOfMass();
  Vector p;
  double totalMass = 0.0;
  forEachItem<Body>(*bodies, [&](const Body& b) {
    p += b.mass * b.velocity;
    totalMass += b.mass;
  });
  // Guarded division: with no mass to divide by the velocities count as they
  // are.
  const Vector v0 = p / totalMass;
  Vector l;
  forEachItem<Body>(
      *bodies, [&](const Body& b) { l += cross(b.mass * (b.position - r0), b.velocity - v0); });
  // Adding zero turns a negative zero into zero, so a world without rotation
  // reports plain zeros.
  return l + Vector();
}

void World::computeAccelerations() {
  clearAllForces();
  computeForces();
  forEachItem<Body>(*bodies, [](Body& b) { b.acceleration = b.computeAcceleration(); });
  clearAllForces();
}
