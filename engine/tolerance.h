#pragma once

// The engine's one absolute tolerance. Vector and quaternion divisions and
// normalisations are guarded by it, momentum components below it count as
// zero, the force pass skips pairs closer than it (in the plain loop and in
// the packed kernels alike), and an adaptive step's two energies agree when
// their relative difference is below it. The fast paths give the reference's
// bits only because every one of these is this same number.
inline constexpr double kEngineTolerance = 1e-12;
