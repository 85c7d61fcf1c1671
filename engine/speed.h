#pragma once

// Choices of how the engine computes its force and collision passes. Every
// choice gives the same bits; they differ only in speed. The host and the
// tests may change them between steps.

// The instruction set of the packed passes, or the reference pass over the
// body list.
enum class KernelPath { Reference, Sse2, Avx2, Avx512 };

// The fastest path this processor supports (Sse2 at least on x86-64).
KernelPath fastestKernelPath();
bool kernelPathSupported(KernelPath path);
// Chooses the path of later passes; returns false and changes nothing when the
// processor lacks it. The environment variable ORRENVALE_SIMD
// (reference, plain or sse2, avx2, avx512) sets the choice at start-up; the
// default is the fastest path.
bool setKernelPath(KernelPath path);
KernelPath kernelPath();
// "reference", "sse2", "avx2" or "avx512".
const char* kernelPathName(KernelPath path);

// Forces the number of threads of every pass (1 to 64); 0 returns to the
// automatic choice: one thread below about 500 bodies or while another
// process keeps a core busy, otherwise one per core. The environment variable
// ORRENVALE_THREADS sets it at start-up.
void setPassThreads(int threads);
// The forced thread count, or 0 for automatic.
int passThreads();
