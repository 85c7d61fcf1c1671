#pragma once

#include "scalar_ops.h"
#include "tolerance.h"

// The gravitational force of one pair of bodies, written once for every pass
// that forms it: the plain loop over the body list, on doubles, and the
// packed kernels, on SSE2, AVX2 and AVX-512 vectors of pairs. Ops names the
// arithmetic (V a number or a vector of them, M a truth value or a lane
// mask). With i the earlier body of the pair in the list:
//   d = p_i - p_j,  d2 = (dx dx + dy dy) + dz dz,  l = sqrt(d2),
//   s = ((-G m_i) m_j) / d2,  force on i = s (d / l), on j = -1 (force on i).
// Every operation and its order is part of the results: the same expression
// in every pass is what makes the packed passes give the plain one's bits.
// A pair closer than the engine's tolerance (coincident bodies included) has
// no direction and exerts no force: keep is then false, and the force values,
// which may be infinite or not numbers, must not be added.
template <typename Ops>
struct PairForce {
  typename Ops::V x;
  typename Ops::V y;
  typename Ops::V z;
  typename Ops::M keep;
};

// minusGMi is (-G) m_i, formed first, as the order above requires.
template <typename Ops>
inline PairForce<Ops> pairForce(typename Ops::V dx, typename Ops::V dy, typename Ops::V dz,
                                typename Ops::V minusGMi, typename Ops::V mj) {
  using V = typename Ops::V;
  const V d2 = Ops::add(Ops::add(Ops::mul(dx, dx), Ops::mul(dy, dy)), Ops::mul(dz, dz));
  const V l = Ops::sqrt(d2);
  const V s = Ops::div(Ops::mul(minusGMi, mj), d2);
  return {Ops::mul(s, Ops::div(dx, l)), Ops::mul(s, Ops::div(dy, l)), Ops::mul(s, Ops::div(dz, l)),
          Ops::greater(Ops::abs(l), Ops::set1(kEngineTolerance))};
}
