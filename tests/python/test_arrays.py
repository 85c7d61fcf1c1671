# Whole-state arrays: exact round trips, and refusal of anything that does not
# fit, without touching the world.
import numpy as np
import pytest

import orrenvale
from conftest import EXAMPLES, random_world

PLANETS = next(e for e in EXAMPLES if e.stem == "planet-formation")


def bits(state):
    return {k: v.tobytes() for k, v in state.items()}


# The plain world takes its steps one at a time, the copied one in two calls.
@pytest.mark.parametrize("write", ["set_state", "properties"])
def test_round_trip_then_step_gives_the_same_bits(write):
    plain = orrenvale.World.load(PLANETS)
    copied = orrenvale.World.load(PLANETS)
    for _ in range(220):
        plain.step()
    copied.step(20)
    state = copied.state()
    if write == "set_state":
        copied.set_state(**state)
    else:
        for name, array in state.items():
            if name != "ids":
                setattr(copied, name, array)
    copied.step(200)
    assert bits(copied.state()) == bits(plain.state())
    assert copied.elapsed_time == plain.elapsed_time


def test_arrays_hold_the_fields_of_the_bodies_in_list_order():
    w = orrenvale.World()
    a = w.add_body(position=(1, 2, 3), velocity=(4, 5, 6), mass=7, radius=8, color=(0.1, 0.2, 0.3))
    b = w.add_body()
    s = w.state()
    assert s["ids"].tolist() == [a.id, b.id] == [100, 101]
    assert s["positions"].tolist() == [[1, 2, 3], [0, 0, 0]]
    assert s["velocities"].tolist() == [[4, 5, 6], [0, 0, 0]]
    assert s["masses"].tolist() == [7, 1] and s["radii"].tolist() == [8, 1]
    assert s["colors"].dtype == np.float32
    assert s["colors"][0].tolist() == np.array([0.1, 0.2, 0.3], np.float32).tolist()


def test_other_layouts_and_real_types_are_converted():
    w = random_world(4)
    wide = np.zeros((8, 6))
    wide[::2, ::2] = np.arange(12).reshape(4, 3)
    w.positions = wide[::2, ::2]  # not contiguous
    assert w.positions.tolist() == np.arange(12).reshape(4, 3).tolist()
    w.masses = np.array([1, 2, 3, 4], dtype=np.int16)
    w.radii = [0.5, 0.5, 0.5, np.float32(0.25)]
    assert w.masses.tolist() == [1, 2, 3, 4] and w.radii[3] == 0.25


# (array name, value, exception): wrong shapes, lengths and element types.
BAD = [
    ("positions", np.zeros((3, 3)), ValueError),  # one row short
    ("positions", np.zeros((4, 2)), ValueError),
    ("positions", np.zeros(12), ValueError),
    ("positions", np.zeros((1_000_000, 3)), ValueError),
    ("velocities", 3.0, ValueError),
    ("masses", np.zeros((4, 1)), ValueError),
    ("positions", np.zeros((4, 3), complex), TypeError),
    ("positions", np.zeros((4, 3), np.longdouble), TypeError),
    ("positions", np.full((4, 3), "1"), TypeError),
    ("positions", [[0, 0, 0]] * 3 + [[0, 0]], TypeError),  # ragged
    ("colors", [[None] * 3] * 4, TypeError),
    ("radii", [10**400] * 4, TypeError),
]


@pytest.mark.parametrize("name, value, error", BAD)
def test_bad_arrays_raise_and_change_nothing(name, value, error):
    w = random_world(4)
    before = bits(w.state())
    with pytest.raises(error):
        setattr(w, name, value)
    with pytest.raises(error):
        w.set_state(**{"accelerations": np.ones((4, 3)), name: value})
    assert bits(w.state()) == before


def test_state_of_other_bodies_is_refused():
    w = random_world(3)
    s = w.state()
    w.remove_body(w.ids[1])
    with pytest.raises(ValueError):
        w.set_state(**s)
    with pytest.raises(TypeError, match="unknown state array"):
        w.set_state(spins=np.zeros(2))


def test_bad_numbers_in_arrays_follow_the_engines_guarded_arithmetic():
    w = random_world(5)
    w.masses = [np.nan, np.inf, -1.0, 0.0, 1e300]
    w.positions = np.where(np.eye(5, 3) > 0, np.nan, w.positions)
    assert w.step(20) == 20
    assert len(w) <= 5
    assert w.elapsed_time == sum([w.time_step] * 20)
