#pragma once

// The force and collision kernels, written once over a vector type S and
// instantiated by each instruction-set translation unit. Everything here has
// internal linkage: each unit must keep its own copy, compiled for its own
// instruction set, so the linker can never pick an AVX-512 copy for a machine
// without it.
//
// Exactness: every pair is evaluated with the same operations in the same
// order as the plain pass over the body list (packed divisions and square
// roots are correctly rounded, and the engine never contracts to fused
// multiply-add), and every accumulator receives its contributions in
// ascending order of partner:
// - a partner lane accumulates -F over the rows of a tile in row order;
// - a row's own contributions are transposed, so that its sum over the
//   partners of a tile becomes W vector additions in partner order;
// - pairs inside a strip of W bodies are done first, in list order.
// Each pair's force is pairForce (pair_force.h), the expression the plain
// pass uses. A pair that fails its distance guard contributes -0 to the row
// (x + -0 is x for every x) and +0 to the subtraction of the partner, so it
// leaves both accumulators bit for bit as they were, signed zeros included.

#include "kernels.h"
#include "pair_force.h"
#include "touch_test.h"

namespace {

// One pair done as the plain pass does it, for the pairs inside a strip.
inline void scalarPair(const PackedBodies& b, int i, int j) {
  const PairForce<ScalarOps> f = pairForce<ScalarOps>(b.x[i] - b.x[j], b.y[i] - b.y[j],
                                                      b.z[i] - b.z[j], b.minusG * b.m[i], b.m[j]);
  if (!f.keep) {
    return;
  }
  b.fx[i] += f.x;
  b.fy[i] += f.y;
  b.fz[i] += f.z;
  b.fx[j] += -1.0 * f.x;
  b.fy[j] += -1.0 * f.y;
  b.fz[j] += -1.0 * f.z;
}

template <typename S>
void rectangle(const PackedBodies& b, int rowBegin, int rowEnd, int colBegin, int colEnd) {
  using V = typename S::V;
  using M = typename S::M;
  constexpr int W = S::W;
  for (int r = rowBegin; r < rowEnd; r += W) {
    const int rows = rowEnd - r < W ? rowEnd - r : W;
    V fix = S::load(b.fx + r);
    V fiy = S::load(b.fy + r);
    V fiz = S::load(b.fz + r);
    for (int c = colBegin; c < colEnd; c += W) {
      const M valid = S::firstLanes(colEnd - c < W ? colEnd - c : W);
      const V xj = S::load(b.x + c);
      const V yj = S::load(b.y + c);
      const V zj = S::load(b.z + c);
      const V mj = S::load(b.m + c);
      V fjx = S::load(b.fx + c);
      V fjy = S::load(b.fy + c);
      V fjz = S::load(b.fz + c);
      V cx[W];
      V cy[W];
      V cz[W];
      for (int k = 0; k < W; ++k) {
        if (k >= rows) {
          cx[k] = cy[k] = cz[k] = S::set1(-0.0);
          continue;
        }
        const int i = r + k;
        const PairForce<S> f =
            pairForce<S>(S::sub(S::set1(b.x[i]), xj), S::sub(S::set1(b.y[i]), yj),
                         S::sub(S::set1(b.z[i]), zj), S::set1(b.minusG * b.m[i]), mj);
        const M keep = S::both(valid, f.keep);
        const V fx = f.x;
        const V fy = f.y;
        const V fz = f.z;
        fjx = S::sub(fjx, S::orPlusZero(keep, fx));
        fjy = S::sub(fjy, S::orPlusZero(keep, fy));
        fjz = S::sub(fjz, S::orPlusZero(keep, fz));
        cx[k] = S::orMinusZero(keep, fx);
        cy[k] = S::orMinusZero(keep, fy);
        cz[k] = S::orMinusZero(keep, fz);
      }
      S::store(b.fx + c, fjx);
      S::store(b.fy + c, fjy);
      S::store(b.fz + c, fjz);
      S::transpose(cx);
      S::transpose(cy);
      S::transpose(cz);
      for (int k = 0; k < W; ++k) {
        fix = S::add(fix, cx[k]);
        fiy = S::add(fiy, cy[k]);
        fiz = S::add(fiz, cz[k]);
      }
    }
    S::store(b.fx + r, fix);
    S::store(b.fy + r, fiy);
    S::store(b.fz + r, fiz);
  }
}

template <typename S>
void triangle(const PackedBodies& b, int begin, int end) {
  constexpr int W = S::W;
  for (int r = begin; r < end; r += W) {
    const int stripEnd = end - r < W ? end : r + W;
    for (int i = r; i < stripEnd; ++i) {
      for (int j = i + 1; j < stripEnd; ++j) {
        scalarPair(b, i, j);
      }
    }
    if (stripEnd < end) {
      rectangle<S>(b, r, stripEnd, stripEnd, end);
    }
  }
}

// The touch test of the collision pass (touch_test.h) for every pair with i in
// the rows and j after i.
template <typename S>
bool anyTouching(const PackedBodies& b, int rowBegin, int rowEnd) {
  using V = typename S::V;
  constexpr int W = S::W;
  for (int i = rowBegin; i < rowEnd; ++i) {
    const V xi = S::set1(b.x[i]);
    const V yi = S::set1(b.y[i]);
    const V zi = S::set1(b.z[i]);
    const V ri = S::set1(b.m[i]);
    for (int j = i + 1; j < b.count; j += W) {
      const V dx = S::sub(xi, S::load(b.x + j));
      const V dy = S::sub(yi, S::load(b.y + j));
      const V dz = S::sub(zi, S::load(b.z + j));
      const V reach = S::add(ri, S::load(b.m + j));
      const int lanes = b.count - j < W ? b.count - j : W;
      if (S::any(S::both(S::firstLanes(lanes), touching<S>(dx, dy, dz, reach)))) {
        return true;
      }
    }
  }
  return false;
}

template <typename S>
KernelSet makeKernels() {
  return KernelSet{&triangle<S>, &rectangle<S>, &anyTouching<S>};
}

}  // namespace
