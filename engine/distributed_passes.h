#pragma once

class World;

// The force pass and the touch test of the collision pass, handed to a host
// that spreads them over several processes. Every process holds the whole
// world and steps it in the same way; only these two passes are shared out,
// each process doing one block of the work and the host exchanging the
// results, so that every process goes on with the same state, bit for bit.
// The engine knows nothing of the transport: the host implements this class
// and installs it in the world with World::setDistributedPasses.
class DistributedPasses {
 public:
  virtual ~DistributedPasses() = default;
  // Adds the forces of all pairs of active bodies to their accumulators, with
  // exactly the bits of World::computeForcesPlain.
  virtual void computeForces(World& world) = 0;
  // False only when no two active bodies of the world touch; the same answer
  // on every process.
  virtual bool mayTouch(World& world) = 0;
};

// How the work is cut into parts, for count active bodies in list order and
// part in [0, parts]; part == parts gives count, so part p covers
// [start(p), start(p + 1)).
//
// Force blocks have equal numbers of bodies (each block's pass evaluates
// b (count - b) + b (b - 1) / 2 pairs for b bodies, so equal blocks mean equal
// work) and start at multiples of 8, the lanes of the widest kernels.
int forceBlockStart(int count, int parts, int part);
// Touch rows: row i holds the pairs (i, j) with j > i, so early rows are
// long; runs of rows with about equal numbers of pairs.
int touchRowStart(int count, int parts, int part);
