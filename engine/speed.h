#pragma once

// Choices of how the engine computes its force and collision passes (each
// world's FastPass makes them). Every choice gives the same bits; they differ
// only in speed.

// The instruction set of the packed passes, or the reference pass over the
// body list.
enum class KernelPath { Reference, Sse2, Avx2, Avx512 };

// The fastest path this processor supports (Sse2 at least on x86-64). The
// environment variable ORRENVALE_SIMD (reference, plain or sse2, avx2,
// avx512) chooses another at start-up; ORRENVALE_THREADS (1 to 64) forces a
// thread count.
KernelPath fastestKernelPath();
bool kernelPathSupported(KernelPath path);
// "reference", "sse2", "avx2" or "avx512".
const char* kernelPathName(KernelPath path);
