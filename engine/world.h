#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "body.h"
#include "linked_list.h"
#include "names.h"
#include "trace_frames.h"
#include "vector.h"

class DistributedPasses;
class FastPass;

// Where an adaptive step stands while it refines its time step, which can
// take very long (halving the substep down to 1e-8 may mean billions of
// integrations).
struct StepProgress {
  // Substeps of the comparison under way; 0 while the single step runs.
  double substeps = 0.0;
  // Integrations done so far in this step.
  double done = 0.0;
  // Integrations the whole step needs if it refines down to the smallest
  // substep; the step may well end sooner.
  double worstCase = 0.0;
};

// Watches a long step. The world calls it every few thousand pair
// evaluations while an adaptive step runs; the engine reads no clock, the
// host decides when to show anything. Returning false cancels the step.
class StepMonitor {
 public:
  virtual ~StepMonitor() = default;
  virtual bool keepGoing(const StepProgress& progress) = 0;
};

// How the world's bodies are moved from one step to the next.
enum class Integrator : int32_t { RK4, Leapfrog, WisdomHolman, GaussRadau };
// How the forces of a step are summed: every pair exactly, or by a tree that
// takes distant groups of bodies as one.
enum class Gravity : int32_t { Exact, Tree };

// The world's values apart from its lists, each with its reset value: the
// one place where they are written. Construction and every reset give the
// world these.
struct WorldValues {
  // Defaults are single-precision constants widened to double.
  static constexpr double kDefaultTimeStep = 0.009999999776482582;
  static constexpr double kDefaultGravitationalConstant = 6.672590258105515e-11;
  static constexpr int32_t kDefaultTraceHistoryPoints = 20000;
  static constexpr int32_t kFirstBodyId = 100;
  static constexpr int32_t kFirstViewNumber = 100;

  double elapsedTime = 0.0;
  int32_t traceHistoryPoints = kDefaultTraceHistoryPoints;
  double timeStep = kDefaultTimeStep;
  double gravitationalConstant = kDefaultGravitationalConstant;
  double restitution = 1.0;
  bool adaptive = false;
  bool merge = true;
  int32_t nextBodyId = kFirstBodyId;
  int32_t nextViewNumber = kFirstViewNumber;
  char name[kNameSize] = "Default world";
  float millisecondsPerUpdate = 0.0f;
  // The integrator, the tolerance of the adaptive Gauss-Radau integrator,
  // and the order of the Wisdom-Holman map's symplectic correctors (0: none).
  Integrator integrator = Integrator::RK4;
  double integratorAccuracy = 1e-9;
  int32_t symplecticCorrectors = 0;
  // The force sum, the tree's opening angle, and the Plummer softening
  // length (0: Newton's law unsoftened).
  Gravity gravity = Gravity::Exact;
  double openingAngle = 0.5;
  double softeningLength = 0.0;
};

// The one simulation the application holds: bodies, trace points, parameters,
// elapsed time and the counters that number bodies and views. The host owns
// time: the world only moves when step() is called.
class World : public WorldValues {
 public:
  World();
  ~World();
  World(const World&) = delete;
  World& operator=(const World&) = delete;

  // Body management.
  void reset();
  Body* createBody();
  // Puts a body with the given identifier back at the given place in the
  // list (0 first; past the end appends), as an undone deletion does. It
  // takes no identifier from nextBodyId, which is raised past id if needed
  // so that the identifier is never handed out again. The body carries its
  // default name and fields.
  Body* insertBody(int32_t id, int32_t index);
  Body* findBodyById(int32_t id) const;
  Body* findBodyByName(std::string_view name) const;
  void deleteBodyById(int32_t id);
  void deleteAllBodies();
  void removeInactiveBodies();
  int32_t takeViewNumber() { return nextViewNumber++; }
  Vector minCorner() const;
  Vector maxCorner() const;
  void setName(std::string_view newName) { copyName(name, newName); }

  // Time integration. step() returns false when the monitor cancelled it:
  // the world is then exactly as it was before the step (bodies with every
  // field the program shows, trace points, elapsed time), though the Body
  // objects may be new ones with the same identifiers.
  bool step(StepMonitor* monitor = nullptr);
  bool integrate();
  bool adaptiveStep(int n, StepMonitor* monitor = nullptr);
  void clearAllForces();
  // The force pass. It runs packed, vectorised and, for large worlds, on
  // several threads, with results bit for bit those of computeForcesPlain.
  void computeForces();
  // The force pass as a plain loop over the body list: the reference that
  // defines the results (each body's sum is formed in list order of partner).
  void computeForcesPlain();
  // The force pass for one block of the active bodies, [begin, end) in list
  // order, begin a forceBlockStart: their accumulators receive exactly what
  // computeForces adds to them; every other accumulator is left as it was.
  void computeBlockForces(int begin, int end);
  // The world's packed passes: their instruction set and thread count.
  FastPass& fastPass() { return *fastPass_; }
  // Shares the force pass and the touch test out over several processes
  // (null, the default, keeps them in this one). The host keeps the passes
  // alive while they are installed.
  void setDistributedPasses(DistributedPasses* passes) { distributed_ = passes; }
  DistributedPasses* distributedPasses() const { return distributed_; }
  double energy() const;
  Vector momentum() const;
  Vector centerOfMass() const;
  // Orbital angular momentum about the centre of mass, in the frame moving
  // with it: the sum of m (r - R) x (v - V). Spin is not modelled, so a merge
  // that is not head-on turns the pair's relative angular momentum into spin
  // that no body holds.
  Vector angularMomentum() const;
  void computeAccelerations();

  // Collisions and traces. collide() first looks for a touching pair with a
  // packed test and, only if there is one, runs collidePlain, the pass over
  // the body list that answers the pairs one after another.
  bool collide();
  bool collidePlain();
  // The touch test of collide() for the pairs whose earlier body is one of
  // the active bodies [begin, end): false when none of them touches; true
  // when one does or the test was not made.
  bool mayTouchFromRows(int begin, int end);
  void recordTraces();
  // The two halves of recordTraces: a step trims only once it is done, so
  // a cancelled step can take back the points it added.
  int32_t appendTracePoints();
  void trimTracePoints();

  LinkedList* bodies = nullptr;
  LinkedList* tracePoints = nullptr;
  // What each step's trace points were recorded against, for drawing them
  // relative to a body or the centre of mass. Recording it reads the bodies
  // and changes none of their values.
  TraceFrames traceFrames;

 private:
  std::unique_ptr<FastPass> fastPass_;
  DistributedPasses* distributed_ = nullptr;
  // The accelerations on entry to an adaptive step that a monitor may
  // cancel (body copies start with none); kept to reuse its memory.
  std::vector<Vector> entryAccelerations_;
  // The number the next recorded trace frame gets; 0 is left for points
  // made without a frame.
  uint64_t nextTraceFrame_ = 1;
};

// Walks a list whose items are all of one known type.
template <typename T, typename F>
void forEachItem(const LinkedList& list, F&& f) {
  for (ListNode* node = list.head(); node != nullptr; node = node->next) {
    f(*static_cast<T*>(node->item()));
  }
}

// Visits every unordered pair of active bodies once, the earlier body of the
// list first, in list order: the order in which forces and collisions are
// applied is part of the results.
template <typename F>
void forEachActivePair(const LinkedList& list, F&& f) {
  for (ListNode* ni = list.head(); ni != nullptr; ni = ni->next) {
    auto* bi = static_cast<Body*>(ni->item());
    if (!bi->active) {
      continue;
    }
    for (ListNode* nj = ni->next; nj != nullptr; nj = nj->next) {
      auto* bj = static_cast<Body*>(nj->item());
      // Only later bodies are absorbed during a pass, so bi stays active.
      if (bj->active) {
        f(*bi, *bj);
      }
    }
  }
}
