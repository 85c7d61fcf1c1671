#!/usr/bin/python3
"""Sweep the coefficient of restitution of the rebound example.

Four balls fall onto a heavy sphere ("Ground") while two more orbit it. For
each coefficient the world is run for 20 time units with rebounding
collisions, and the table shows how often the falling balls bounced off the ground, how far
they sit from the ground's surface at the end (negative: sunk into it), and
what became of the total energy and momentum.

A rebound changes only velocities, along the line of centres, so momentum is
kept exactly whatever the coefficient. Below 1 each bounce takes energy away
and the balls come to rest on the ground; as the collision response moves no
body, gravity then pulls them into it a little, which lowers the potential
energy further.

    PYTHONPATH=build/release/python /usr/bin/python3 \\
        examples/python/restitution_sweep.py [--world FILE] [--steps N]
"""

import argparse
import pathlib

import numpy as np

import orrenvale

HERE = pathlib.Path(__file__).resolve().parent
COEFFICIENTS = (0.0, 0.25, 0.5, 0.75, 0.9, 1.0)


def run(world_file, restitution, steps):
    world = orrenvale.World.load(world_file)
    world.merge = False
    world.restitution = restitution
    ground = world.body_named("Ground")
    balls = [world.body_named(f"Ball {i}") for i in range(4)]
    columns = [world.ids.tolist().index(b.id) for b in [ground, *balls]]
    contact = ground.radius + np.array([b.radius for b in balls])
    e0, p0 = world.energy(), world.momentum()

    recording = world.record(steps)
    xyz = recording.positions[:, columns]
    distance = np.linalg.norm(xyz[:, 1:] - xyz[:, :1], axis=2)
    # A bounce is a step after which a ball that touched the ground no longer
    # does.
    touching = distance <= contact
    bounces = np.sum(touching[:-1] & ~touching[1:])
    return {
        "bounces": bounces,
        "gap": np.mean(distance[-1] - contact),
        "energy": world.energy(),
        "energy change": (world.energy() - e0) / abs(e0),
        "momentum change": np.abs(world.momentum() - p0).max(),
    }


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--world", default=HERE.parent / "rebound.ovd")
    parser.add_argument("--steps", type=int, default=10000)
    args = parser.parse_args()

    print(f"{'restitution':>11} {'bounces':>8} {'mean gap':>9} {'energy':>12} "
          f"{'rel. change':>12} {'momentum change':>16}")
    for e in COEFFICIENTS:
        r = run(args.world, e, args.steps)
        print(f"{e:>11.2f} {r['bounces']:>8d} {r['gap']:>9.3f} {r['energy']:>12.4f} "
              f"{r['energy change']:>12.3e} {r['momentum change']:>16.3g}")


if __name__ == "__main__":
    main()
