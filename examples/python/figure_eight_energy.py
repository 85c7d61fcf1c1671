#!/usr/bin/python3
"""Energy error of the figure-eight orbit against the time step.

Steps the three-body figure eight over one period at seven time steps, each
half the one before, keeps the largest relative energy error seen on the way,
and plots it against the time step on log-log axes beside the orbit itself.
The Runge-Kutta step is of fourth order: at the small steps the error falls
sixteenfold per halving (slope 4). At the large steps a slow drift of the
energy, falling 32-fold per halving (slope 5), is larger still.

    PYTHONPATH=build/release/python /usr/bin/python3 \\
        examples/python/figure_eight_energy.py [--world FILE] [--output PNG]
"""

import argparse
import pathlib

import matplotlib

matplotlib.use("Agg")  # files only, no display needed
import matplotlib.pyplot as plt
import numpy as np

import orrenvale

PERIOD = 6.3259  # of the figure eight with G = 1 and unit masses
HERE = pathlib.Path(__file__).resolve().parent


def largest_energy_error(world_file, time_step):
    """Largest |E - E0| / |E0| over one period, checked after every step."""
    world = orrenvale.World.load(world_file)
    world.time_step = time_step
    e0 = world.energy()
    errors = []
    world.step(round(PERIOD / time_step),
               callback=lambda w, done: errors.append(abs(w.energy() - e0) / abs(e0)))
    return max(errors)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--world", default=HERE.parent / "figure-eight.ovd")
    parser.add_argument("--output", default="figure-eight-energy.png")
    args = parser.parse_args()

    # Below about 0.0005 the rounding of twenty thousand steps (some 1e-14)
    # hides the method's error.
    steps = 0.04 / 2.0 ** np.arange(7)
    errors = np.array([largest_energy_error(args.world, dt) for dt in steps])
    print("time step     largest relative energy error   slope")
    for i, (dt, err) in enumerate(zip(steps, errors)):
        slope = f"{np.log2(errors[i - 1] / err):5.2f}" if i else ""
        print(f"{dt:<13.6g} {err:<31.3e} {slope}")

    orbit = orrenvale.World.load(args.world)
    recording = orbit.record(round(PERIOD / orbit.time_step), every=5)

    fig, (left, right) = plt.subplots(1, 2, figsize=(11, 4.6))
    for body, name in enumerate(recording.names):
        xy = recording.positions[:, body, :2]
        left.plot(xy[:, 0], xy[:, 1], lw=1.2, label=name)
        left.plot(*xy[0], "o", color=left.lines[-1].get_color())
    left.set_aspect("equal")
    left.set_title(f"One period, time step {orbit.time_step:g}")
    left.set_xlabel("x")
    left.set_ylabel("y")
    left.set_ylim(-0.5, 0.6)
    left.legend(loc="upper center", ncol=3, fontsize="small")

    right.loglog(steps, errors, "o-", label="largest error over one period")
    # Guide lines, drawn three times above the points they follow: slope 5
    # over the large steps, slope 4 over the small ones.
    for order, part, style in ((5, slice(0, 4), ":"), (4, slice(3, None), "--")):
        dt = steps[part]
        ref = 3 * errors[part][-1] * (dt / dt[-1]) ** order
        right.loglog(dt, ref, style, color="grey", label=f"slope {order}")
    right.set_xlabel("time step")
    right.set_ylabel("relative energy error |E - E0| / |E0|")
    right.set_title("Energy error of the fourth-order Runge-Kutta step")
    right.grid(True, which="both", lw=0.3)
    right.legend(fontsize="small")
    fig.tight_layout()
    fig.savefig(args.output, dpi=110)
    print(f"plot written to {args.output}")


if __name__ == "__main__":
    main()
