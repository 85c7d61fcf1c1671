#pragma once

// Internal interface between the fast force and collision passes and their
// per-instruction-set kernels. Each kernel set lives in its own translation
// unit compiled for its instruction set; nothing else includes this file.

// The active bodies of one pass in list order, as separate component arrays.
// Every array has room for kPadding entries past count, all zero, so a kernel
// may load whole vectors at any index below count.
struct PackedBodies {
  static constexpr int kPadding = 16;

  const double* x = nullptr;
  const double* y = nullptr;
  const double* z = nullptr;
  // Masses for the force pass, radii for the collision pass.
  const double* m = nullptr;
  double* fx = nullptr;
  double* fy = nullptr;
  double* fz = nullptr;
  int count = 0;
  double minusG = 0.0;
};

// Adds the forces of all pairs i < j inside [begin, end) to the accumulators.
using TriangleKernel = void (*)(const PackedBodies& b, int begin, int end);
// Adds the forces of all pairs of a row in [rowBegin, rowEnd) and a partner in
// [colBegin, colEnd); every row precedes every partner. Every range starts at
// a multiple of the kernel width.
using RectangleKernel = void (*)(const PackedBodies& b, int rowBegin, int rowEnd, int colBegin,
                                 int colEnd);
// True when a body i in [rowBegin, rowEnd) and a body j > i touch.
using TouchKernel = bool (*)(const PackedBodies& b, int rowBegin, int rowEnd);

struct KernelSet {
  TriangleKernel triangle;
  RectangleKernel rectangle;
  TouchKernel anyTouching;
};

const KernelSet& sse2Kernels();
const KernelSet& avx2Kernels();
const KernelSet& avx512Kernels();
