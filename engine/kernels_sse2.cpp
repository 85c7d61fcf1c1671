// Kernels on two-lane SSE2 vectors: every x86-64 processor has them.
#include <emmintrin.h>

#include "kernel_template.h"

namespace {
struct Sse2 {
  using V = __m128d;
  using M = __m128d;
  static constexpr int W = 2;

  static V load(const double* p) { return _mm_loadu_pd(p); }
  static void store(double* p, V v) { _mm_storeu_pd(p, v); }
  static V set1(double s) { return _mm_set1_pd(s); }
  static V add(V a, V b) { return _mm_add_pd(a, b); }
  static V sub(V a, V b) { return _mm_sub_pd(a, b); }
  static V mul(V a, V b) { return _mm_mul_pd(a, b); }
  static V div(V a, V b) { return _mm_div_pd(a, b); }
  static V sqrt(V a) { return _mm_sqrt_pd(a); }
  static V abs(V a) { return _mm_andnot_pd(_mm_set1_pd(-0.0), a); }
  // Ordered comparisons: false when either side is not a number.
  static M greater(V a, V b) { return _mm_cmpgt_pd(a, b); }
  static M greaterOrEqual(V a, V b) { return _mm_cmpge_pd(a, b); }
  static M both(M a, M b) { return _mm_and_pd(a, b); }
  // SSE2 has no 64-bit integer comparison; the lanes are set one by one.
  static M firstLanes(int n) {
    return _mm_castsi128_pd(_mm_set_epi64x(n > 1 ? -1 : 0, n > 0 ? -1 : 0));
  }
  static bool any(M m) { return _mm_movemask_pd(m) != 0; }
  static V orPlusZero(M keep, V v) { return _mm_and_pd(keep, v); }
  static V orMinusZero(M keep, V v) {
    return _mm_or_pd(_mm_and_pd(keep, v), _mm_andnot_pd(keep, _mm_set1_pd(-0.0)));
  }
  static void transpose(V* rows) {
    const V a = rows[0];
    rows[0] = _mm_unpacklo_pd(a, rows[1]);
    rows[1] = _mm_unpackhi_pd(a, rows[1]);
  }
};
}  // namespace

const KernelSet& sse2Kernels() {
  static const KernelSet kernels = makeKernels<Sse2>();
  return kernels;
}
