#!/usr/bin/python3
"""World.step(n) from Python against orrenvale-batch on the same world.

Makes a world of N bodies (default 1000, spread out so that none collide),
then alternates timed runs: orrenvale-batch -n STEPS (less a run with -n 0,
which leaves process start-up and loading) and World.step(STEPS) in this
interpreter. Prints the step rates of the fastest and the median run of each,
the module's overhead in per cent, and the load average before and after,
since the machine may be shared.

    PYTHONPATH=build/release/python /usr/bin/python3 bench/python_step_bench.py \\
        [--batch build/release/batch/orrenvale-batch] [--bodies 1000] [--steps 200]
        [--repeats 5] [--threads 1]
"""

import argparse
import os
import pathlib
import statistics
import subprocess
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parents[1]


def make_world(path, bodies):
    import numpy as np

    import orrenvale

    rng = np.random.default_rng(7)
    world = orrenvale.World()
    world.gravitational_constant = 1.0
    world.time_step = 0.001
    for _ in range(bodies):
        world.add_body(radius=1e-3)
    world.positions = rng.uniform(-100.0, 100.0, (bodies, 3))
    world.velocities = rng.uniform(-0.1, 0.1, (bodies, 3))
    world.save(path)


def batch_seconds(batch, world, steps):
    start = time.perf_counter()
    subprocess.run([batch, "-n", str(steps), str(world)], check=True)
    return time.perf_counter() - start


def module_seconds(world_file, steps):
    import orrenvale

    world = orrenvale.World.load(world_file)
    start = time.perf_counter()
    world.step(steps)
    return time.perf_counter() - start


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--batch", default=ROOT / "build" / "release" / "batch" / "orrenvale-batch")
    parser.add_argument("--bodies", type=int, default=1000)
    parser.add_argument("--steps", type=int, default=200)
    parser.add_argument("--repeats", type=int, default=5)
    parser.add_argument("--threads", default="1",
                        help="ORRENVALE_THREADS for both ('0': the engine's own choice)")
    args = parser.parse_args()
    # Both read it when they first step; one thread keeps a shared machine's
    # other work out of the comparison.
    os.environ["ORRENVALE_THREADS"] = args.threads

    load_before = os.getloadavg()
    with tempfile.TemporaryDirectory() as scratch:
        world = pathlib.Path(scratch) / "bench.ovd"
        make_world(world, args.bodies)
        batch, module = [], []
        for _ in range(args.repeats):
            batch.append(batch_seconds(args.batch, world, args.steps) -
                         batch_seconds(args.batch, world, 0))
            module.append(module_seconds(world, args.steps))
    load_after = os.getloadavg()

    print(f"{args.bodies} bodies, {args.steps} steps, {args.repeats} runs each, "
          f"ORRENVALE_THREADS={args.threads}")
    # The fastest run is the one least disturbed by other work on the machine;
    # the median shows how much that disturbance was.
    for name, runs in (("orrenvale-batch", batch), ("World.step(n)", module)):
        print(f"{name:<17} {args.steps / min(runs):9.2f} steps/s fastest, "
              f"{args.steps / statistics.median(runs):9.2f} median  "
              f"(s: {', '.join(f'{x:.3f}' for x in runs)})")
    print(f"module overhead   {100 * (min(module) / min(batch) - 1):+.1f} % fastest, "
          f"{100 * (statistics.median(module) / statistics.median(batch) - 1):+.1f} % median")
    print(f"load average      {load_before[0]:.2f} before, {load_after[0]:.2f} after "
          f"({os.cpu_count()} cores)")


if __name__ == "__main__":
    main()
