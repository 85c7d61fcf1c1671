#pragma once

// Whether two spheres touch, written once for every pass that tests it: the
// collision pass over the body list, on doubles, and the packed touch test,
// on SSE2, AVX2 and AVX-512 vectors of pairs. Ops names the arithmetic, as
// for pairForce (pair_force.h):
//   d = sqrt((dx dx + dy dy) + dz dz),  the pair touches when reach >= d,
// with reach = r_i + r_j. A distance that is not a number never touches. The
// packed test only decides whether the plain pass has anything to do, so
// the two must agree bit for bit on every pair.
template <typename Ops>
inline typename Ops::M touching(typename Ops::V dx, typename Ops::V dy, typename Ops::V dz,
                                typename Ops::V reach) {
  const typename Ops::V d =
      Ops::sqrt(Ops::add(Ops::add(Ops::mul(dx, dx), Ops::mul(dy, dy)), Ops::mul(dz, dz)));
  return Ops::greaterOrEqual(reach, d);
}
