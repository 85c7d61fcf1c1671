# step(n) with callbacks, interruption and threads; recordings of runs.
import os
import signal
import threading

import numpy as np
import pytest

import orrenvale
from conftest import random_world, two_body_world


def test_callback_runs_every_k_steps_and_after_the_last_and_can_end_the_run():
    w = two_body_world()
    calls = []
    assert w.step(10, callback=lambda world, done: calls.append((world is w, done)), every=4) == 10
    assert calls == [(True, 4), (True, 8), (True, 10)]
    # True (of any type) stops the run; an exception ends it.
    assert w.step(100, callback=lambda world, done: done >= 30, every=10) == 30
    assert w.step(100, callback=lambda world, done: np.int64(done) >= 20, every=10) == 20
    with pytest.raises(ZeroDivisionError):
        w.step(100, callback=lambda world, done: 1 / 0, every=10)
    assert w.elapsed_time == sum([w.time_step] * 70)


# Changes a callback may make between two steps.
EDITS = {
    "remove": lambda w: w.remove_body(w.ids[0]) if len(w) else None,
    "add": lambda w: w.add_body(position=(len(w) * 3.0, 0, 0)),
    "reset": lambda w: w.reset(),
    "arrays": lambda w: setattr(w, "positions", w.positions * 1.5),
    "nested-step": lambda w: w.step(3),
    "adaptive": lambda w: setattr(w, "adaptive", not w.adaptive),
}


@pytest.mark.parametrize("edit", EDITS.values(), ids=EDITS.keys())
def test_world_changed_from_the_callback_keeps_stepping(edit):
    w = random_world(30)
    assert w.step(40, callback=lambda world, done: edit(world), every=5) == 40
    r = w.record(40, every=5, callback=lambda world, done: edit(world))
    assert r.states.shape[0] == 9 and np.isfinite(r.times).all()


def interrupt(call, after):
    """Runs call() and sends the process SIGINT after some seconds."""
    timer = threading.Timer(after, os.kill, (os.getpid(), signal.SIGINT))
    timer.start()
    with pytest.raises(KeyboardInterrupt):
        call()
    timer.join()


def test_ctrl_c_stops_between_steps_with_a_consistent_world():
    w = random_world(300)
    interrupt(lambda: w.step(10**9), 0.3)
    # The world is exactly what that many whole steps give.
    steps = round(w.elapsed_time / w.time_step)
    again = random_world(300)
    again.step(steps)
    assert steps > 0 and w.elapsed_time == again.elapsed_time
    assert np.array_equal(w.positions, again.positions)


def test_ctrl_c_cancels_a_long_step_and_leaves_the_world_as_it_was():
    # Two point bodies falling almost straight at each other with a time step
    # of 100: the adaptive step would refine for hours.
    w = orrenvale.World()
    w.gravitational_constant, w.adaptive, w.time_step = 1.0, True, 100.0
    w.add_body(position=(1, 0, 0), velocity=(0, 0.05, 0), radius=0.0)
    w.add_body(position=(-1, 0, 0), velocity=(0, -0.05, 0), radius=0.0)
    w.compute_accelerations()
    before = w.state()
    interrupt(w.step, 0.5)
    after = w.state()
    assert w.elapsed_time == 0.0
    for name in before:
        np.testing.assert_array_equal(after[name], before[name], err_msg=name)


def test_other_threads_cannot_touch_a_world_while_it_steps():
    w = random_world(300)
    started, errors = threading.Event(), []

    def touch(world, done):
        started.set()

    stepping = threading.Thread(target=w.step, args=(400, touch, 1))
    stepping.start()
    started.wait()
    while stepping.is_alive():
        try:
            w.positions = w.positions
        except RuntimeError as e:
            errors.append(str(e))
    stepping.join()
    assert errors and errors[0] == "the world is being stepped in another thread"
    assert w.elapsed_time == sum([w.time_step] * 400)


def test_recording_has_a_frame_per_k_steps_and_nan_after_a_merge():
    w = two_body_world()
    w.velocities = [[-1, 0, 0], [1, 0, 0]]
    east, west = w.bodies
    r = w.record(100, every=30)
    # The body merged away is gone for its handle too.
    assert len(w) == 1 and east.exists and not west.exists
    # The radius is a cube root: within an ulp or two.
    assert east.radius == pytest.approx(0.1 * 2 ** (1 / 3), rel=1e-15)
    with pytest.raises(LookupError):
        west.position
    assert "gone" in repr(west)
    assert r.steps.tolist() == [0, 30, 60, 90, 100]
    assert r.times[-1] == w.elapsed_time and r.ids.tolist() == [100, 101]
    assert r.positions.shape == (5, 2, 3) and r.masses.shape == (5, 2)
    assert r.positions[-1, 0].tolist() == east.position.tolist()
    assert np.isnan(r.states[-1, 1]).all() and r.masses[-1, 0] == 2
    assert r.states[0, 0].tolist() == [1, 0, 0, -1, 0, 0, 0, 0, 0, 1]
    early = w.record(100, every=10, callback=lambda world, done: done == 20)
    assert early.steps.tolist() == [0, 10, 20] and early.states.shape == (3, 1, 10)


def test_recording_memory_and_step_counts_are_checked_before_any_step():
    w = random_world(10)
    # 1001 frames of 10 bodies at 80 bytes per body and 16 per frame.
    assert len(w.record(1000, max_bytes=1001 * (10 * 80 + 16))) == 1001
    with pytest.raises(ValueError, match="max_bytes"):
        w.record(1000, max_bytes=1001 * (10 * 80 + 16) - 1)
    with pytest.raises(ValueError):
        w.record(2**62)
    for args in ((-1,), (5, None, 0)):
        with pytest.raises(ValueError):
            w.step(*args)
    assert w.elapsed_time == sum([w.time_step] * 1000)
