// Kernels on four-lane AVX2 vectors. This unit is compiled with -mavx2 (and
// never with FMA) and runs only on processors that report AVX2.
#include <immintrin.h>

#include "kernel_template.h"

namespace {
struct Avx2 {
  using V = __m256d;
  using M = __m256d;
  static constexpr int W = 4;

  static V load(const double* p) { return _mm256_loadu_pd(p); }
  static void store(double* p, V v) { _mm256_storeu_pd(p, v); }
  static V set1(double s) { return _mm256_set1_pd(s); }
  static V add(V a, V b) { return _mm256_add_pd(a, b); }
  static V sub(V a, V b) { return _mm256_sub_pd(a, b); }
  static V mul(V a, V b) { return _mm256_mul_pd(a, b); }
  static V div(V a, V b) { return _mm256_div_pd(a, b); }
  static V sqrt(V a) { return _mm256_sqrt_pd(a); }
  static V abs(V a) { return _mm256_andnot_pd(_mm256_set1_pd(-0.0), a); }
  // Ordered, quiet comparisons: false when either side is not a number.
  static M greater(V a, V b) { return _mm256_cmp_pd(a, b, _CMP_GT_OQ); }
  static M greaterOrEqual(V a, V b) { return _mm256_cmp_pd(a, b, _CMP_GE_OQ); }
  static M both(M a, M b) { return _mm256_and_pd(a, b); }
  static M firstLanes(int n) {
    const __m256i lane = _mm256_set_epi64x(3, 2, 1, 0);
    return _mm256_castsi256_pd(_mm256_cmpgt_epi64(_mm256_set1_epi64x(n), lane));
  }
  static bool any(M m) { return _mm256_movemask_pd(m) != 0; }
  static V orPlusZero(M keep, V v) { return _mm256_and_pd(keep, v); }
  static V orMinusZero(M keep, V v) { return _mm256_blendv_pd(_mm256_set1_pd(-0.0), v, keep); }
  static void transpose(V* rows) {
    const V a0 = _mm256_unpacklo_pd(rows[0], rows[1]);
    const V a1 = _mm256_unpackhi_pd(rows[0], rows[1]);
    const V a2 = _mm256_unpacklo_pd(rows[2], rows[3]);
    const V a3 = _mm256_unpackhi_pd(rows[2], rows[3]);
    rows[0] = _mm256_permute2f128_pd(a0, a2, 0x20);
    rows[1] = _mm256_permute2f128_pd(a1, a3, 0x20);
    rows[2] = _mm256_permute2f128_pd(a0, a2, 0x31);
    rows[3] = _mm256_permute2f128_pd(a1, a3, 0x31);
  }
};
}  // namespace

const KernelSet& avx2Kernels() {
  static const KernelSet kernels = makeKernels<Avx2>();
  return kernels;
}
