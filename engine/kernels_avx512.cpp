// Kernels on eight-lane AVX-512 vectors. This unit is compiled with -mavx512f
// (FMA contraction stays off) and runs only on processors that report
// AVX-512F.
#include <immintrin.h>

// GCC 12's AVX-512 intrinsics start from _mm512_undefined_pd(), which its
// flow analysis reports as maybe uninitialized wherever they are inlined.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif

#include "kernel_template.h"

namespace {
struct Avx512 {
  using V = __m512d;
  using M = __mmask8;
  static constexpr int W = 8;

  static V load(const double* p) { return _mm512_loadu_pd(p); }
  static void store(double* p, V v) { _mm512_storeu_pd(p, v); }
  static V set1(double s) { return _mm512_set1_pd(s); }
  static V add(V a, V b) { return _mm512_add_pd(a, b); }
  static V sub(V a, V b) { return _mm512_sub_pd(a, b); }
  static V mul(V a, V b) { return _mm512_mul_pd(a, b); }
  static V div(V a, V b) { return _mm512_div_pd(a, b); }
  static V sqrt(V a) { return _mm512_sqrt_pd(a); }
  static V abs(V a) { return _mm512_abs_pd(a); }
  // Ordered, quiet comparisons: false when either side is not a number.
  static M greater(V a, V b) { return _mm512_cmp_pd_mask(a, b, _CMP_GT_OQ); }
  static M greaterOrEqual(V a, V b) { return _mm512_cmp_pd_mask(a, b, _CMP_GE_OQ); }
  static M both(M a, M b) { return static_cast<M>(a & b); }
  static M firstLanes(int n) { return static_cast<M>((1u << n) - 1u); }
  static bool any(M m) { return m != 0; }
  static V orPlusZero(M keep, V v) { return _mm512_maskz_mov_pd(keep, v); }
  static V orMinusZero(M keep, V v) { return _mm512_mask_mov_pd(_mm512_set1_pd(-0.0), keep, v); }
  static void transpose(V* rows) {
    // Pairs of rows, then pairs of 128-bit columns, then 256-bit halves.
    const __m512i low = _mm512_set_epi64(13, 12, 5, 4, 9, 8, 1, 0);
    const __m512i high = _mm512_set_epi64(15, 14, 7, 6, 11, 10, 3, 2);
    V a[8];
    for (int k = 0; k < 8; k += 2) {
      a[k] = _mm512_unpacklo_pd(rows[k], rows[k + 1]);
      a[k + 1] = _mm512_unpackhi_pd(rows[k], rows[k + 1]);
    }
    V b[8];
    for (int k = 0; k < 8; k += 4) {
      b[k] = _mm512_permutex2var_pd(a[k], low, a[k + 2]);
      b[k + 1] = _mm512_permutex2var_pd(a[k + 1], low, a[k + 3]);
      b[k + 2] = _mm512_permutex2var_pd(a[k], high, a[k + 2]);
      b[k + 3] = _mm512_permutex2var_pd(a[k + 1], high, a[k + 3]);
    }
    for (int k = 0; k < 4; ++k) {
      rows[k] = _mm512_shuffle_f64x2(b[k], b[k + 4], 0x44);
      rows[k + 4] = _mm512_shuffle_f64x2(b[k], b[k + 4], 0xEE);
    }
  }
};
}  // namespace

const KernelSet& avx512Kernels() {
  static const KernelSet kernels = makeKernels<Avx512>();
  return kernels;
}
