#include <cmath>

#include "distributed_passes.h"
#include "fast_pass.h"
#include "scalar_ops.h"
#include "touch_test.h"
#include "world.h"

namespace {
// The double nearest to 1/3.
constexpr double kOneThird = 0.3333333333333333;

// Mass, momentum and volume are conserved; the colour is mixed by volume. The
// survivor is the older body, i, which keeps its name and identifier.
void mergeInto(Body& i, Body& j) {
  const double mi = i.mass;
  const double mj = j.mass;
  const double ri3 = i.radius * i.radius * i.radius;
  const double rj3 = j.radius * j.radius * j.radius;
  const double r = std::pow(ri3 + rj3, kOneThird);
  for (int c = 0; c < 3; ++c) {
    i.color[c] = static_cast<float>(
        ((static_cast<double>(i.color[c]) * ri3) + (static_cast<double>(j.color[c]) * rj3)) /
        (r * r * r));
  }
  i.radius = r;
  i.velocity = ((i.velocity * mi) + (j.velocity * mj)) / (mi + mj);
  i.position = ((i.position * mi) + (j.position * mj)) / (mi + mj);
  i.mass = mi + mj;
  j.active = false;
}

// Scales the normal component of the relative velocity by -e and keeps the
// total momentum. Positions stay; approaching or not, every touching pair
// gets the response.
void rebound(Body& i, Body& j, double e) {
  const double mi = i.mass;
  const double mj = j.mass;
  const Vector n = normalized(i.position - j.position);
  const double s = dot(n, i.velocity - j.velocity);
  i.velocity = i.velocity - (((s * mj) / (mj + mi)) * (1.0 + e)) * n;
  j.velocity = j.velocity + (((s * mi) / (mi + mj)) * (1.0 + e)) * n;
}
}  // namespace

// Overlap test only: a pair touches when the distance of the centres is at
// most the sum of the radii at the end of the step. A swept test would need
// start-of-step positions that the collision pass does not have for both
// passes (the Euler prediction and the final state), and at the time steps
// this program runs an overlap test on both passes catches what matters.
bool World::collide() {
  // No response changes anything before the first touching pair, so when the
  // packed test finds none the pass has nothing to do, and when it finds one
  // the sequential pass from the start gives the exact result.
  if (!(distributed_ != nullptr ? distributed_->mayTouch(*this) : fastPass_->mayTouch(*bodies))) {
    removeInactiveBodies();
    return false;
  }
  return collidePlain();
}

bool World::mayTouchFromRows(int begin, int end) {
  return fastPass_->mayTouchRows(*bodies, begin, end);
}

bool World::collidePlain() {
  bool found = false;
  forEachActivePair(*bodies, [&](Body& bi, Body& bj) {
    const Vector d = bi.position - bj.position;
    if (touching<ScalarOps>(d.x, d.y, d.z, bi.radius + bj.radius)) {
      found = true;
      if (merge) {
        mergeInto(bi, bj);
      } else {
        rebound(bi, bj, restitution);
      }
    }
  });
  removeInactiveBodies();
  return found;
}
