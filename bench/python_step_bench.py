#!/usr/bin/python3
"""World.step(n) from Python against orrenvale-batch on the same world.

Makes a world of N bodies (default 1000, spread out so that none collide),
then alternates timed runs: orrenvale-batch -n STEPS (less a run with -n 0,
which leaves process start-up and loading) and World.step(STEPS) in this
interpreter. Prints the median step rates of each, per processor second and
per wall-clock second, the module's overhead in per cent, and the load
average before and after, since the machine may be shared.

    PYTHONPATH=build/release/python /usr/bin/python3 bench/python_step_bench.py \\
        [--batch build/release/batch/orrenvale-batch] [--bodies 1000] [--steps 200]
        [--repeats 5] [--threads 1]
"""

import argparse
import os
import pathlib
import resource
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


def cpu_of_children():
    usage = resource.getrusage(resource.RUSAGE_CHILDREN)
    return usage.ru_utime + usage.ru_stime


def batch_seconds(batch, world, steps):
    """Wall-clock and processor seconds of one orrenvale-batch run."""
    wall, cpu = time.perf_counter(), cpu_of_children()
    subprocess.run([batch, "-n", str(steps), str(world)], check=True)
    return time.perf_counter() - wall, cpu_of_children() - cpu


def module_seconds(world_file, steps):
    """Wall-clock and processor seconds of World.step(steps)."""
    import orrenvale

    world = orrenvale.World.load(world_file)
    wall, cpu = time.perf_counter(), time.process_time()
    world.step(steps)
    return time.perf_counter() - wall, time.process_time() - cpu


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
            full, empty = (batch_seconds(args.batch, world, n) for n in (args.steps, 0))
            batch.append((full[0] - empty[0], full[1] - empty[1]))
            module.append(module_seconds(world, args.steps))
    load_after = os.getloadavg()

    print(f"{args.bodies} bodies, {args.steps} steps, {args.repeats} runs each, "
          f"ORRENVALE_THREADS={args.threads}")
    # Processor time leaves out the time spent waiting for a core, which on a
    # shared machine varies far more from run to run than the work does.
    for name, runs in (("orrenvale-batch", batch), ("World.step(n)", module)):
        wall, cpu = (statistics.median(r[i] for r in runs) for i in (0, 1))
        print(f"{name:<17} {args.steps / cpu:8.2f} steps per processor second, "
              f"{args.steps / wall:8.2f} per second  (medians of {len(runs)})")
    overhead = [100 * (statistics.median(m[i] for m in module) /
                       statistics.median(b[i] for b in batch) - 1) for i in (0, 1)]
    print(f"module overhead   {overhead[1]:+.1f} % in processor time, {overhead[0]:+.1f} % "
          "in wall-clock time")
    print(f"load average      {load_before[0]:.2f} before, {load_after[0]:.2f} after "
          f"({os.cpu_count()} cores)")


if __name__ == "__main__":
    main()
