# Shared set-up of the Python module's tests: where the build is, the runner,
# the example worlds, and small worlds made on the fly.
import os
import pathlib
import subprocess
import sys

import numpy as np
import pytest

ROOT = pathlib.Path(__file__).resolve().parents[2]
BUILD = pathlib.Path(os.environ.get("ORRENVALE_BUILD", ROOT / "build" / "release"))
sys.path.insert(0, str(BUILD / "python"))

import orrenvale  # noqa: E402  (the path above must come first)

EXAMPLES = sorted((ROOT / "examples").glob("*.ovd"))


@pytest.fixture(scope="session")
def batch():
    path = BUILD / "batch" / "orrenvale-batch"
    assert path.exists(), f"build orrenvale-batch first ({path})"
    return str(path)


# The environment in which `python3 -m orrenvale` finds the module.
ENV = dict(os.environ, PYTHONPATH=str(BUILD / "python"))


def run(argv, **kwargs):
    """Runs a command and returns (exit status, stdout bytes, stderr bytes)."""
    done = subprocess.run(argv, capture_output=True, env=ENV, **kwargs)
    return done.returncode, done.stdout, done.stderr


def run_module(args, **kwargs):
    return run([sys.executable, "-m", "orrenvale", *args], **kwargs)


def two_body_world():
    """Two unit masses at (+-1, 0, 0) orbiting each other, G = 1."""
    w = orrenvale.World()
    w.gravitational_constant, w.time_step = 1.0, 0.01
    w.add_body(name="East", position=(1, 0, 0), velocity=(0, 0.5, 0), radius=0.1)
    w.add_body(name="West", position=(-1, 0, 0), velocity=(0, -0.5, 0), radius=0.1)
    return w


def random_world(n, seed=1):
    """n bodies in a ball of radius 100 with small random velocities."""
    rng = np.random.default_rng(seed)
    w = orrenvale.World()
    w.gravitational_constant = 1.0
    for _ in range(n):
        w.add_body(radius=0.01)
    w.positions = rng.uniform(-100, 100, (n, 3))
    w.velocities = rng.uniform(-0.1, 0.1, (n, 3))
    return w
