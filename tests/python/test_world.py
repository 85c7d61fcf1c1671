# Parameters, bodies and datafiles of a World.
import numpy as np
import pytest

import orrenvale
from conftest import EXAMPLES, run, two_body_world


# (property, value, exception) for values no field can take.
BAD_VALUES = [
    ("time_step", "0.01", TypeError),
    ("time_step", 10**400, OverflowError),
    ("merge", 1, TypeError),
    ("adaptive", "yes", TypeError),
    ("trace_history_points", 2**31, ValueError),
    ("name", b"bytes", TypeError),
    ("name", "a\0b", ValueError),
    ("name", "\ud800", UnicodeEncodeError),
]


@pytest.mark.parametrize("name, value, error", BAD_VALUES)
def test_bad_parameter_values_raise(name, value, error):
    w = orrenvale.World()
    before = getattr(w, name)
    with pytest.raises(error):
        setattr(w, name, value)
    assert getattr(w, name) == before


def test_parameters_keep_the_engines_rules():
    w = orrenvale.World()
    w.milliseconds_per_update = 0.001  # the clock's lower bound
    assert w.milliseconds_per_update == np.float32(0.01)
    w.name = "é" * 200  # 400 bytes of UTF-8, cut to whole characters
    assert w.name == "é" * 127
    w.time_step = np.float32(0.5)
    w.trace_history_points = np.int64(-5)
    assert (w.time_step, w.trace_history_points) == (0.5, -5)


def test_bodies_are_added_found_and_removed_by_identifier():
    w = orrenvale.World()
    a, b, c = (w.add_body(name=n) for n in ("A", "B", "C"))
    w.remove_body(b)
    d = w.add_body()
    assert [x.id for x in w] == [100, 102, 103] and d.name == "Body 3"
    assert w.body(102) == c and w.body_named("A") == a and 101 not in w and a in w
    for lookup in (lambda: w.body(101), lambda: w.body_named("B"), lambda: w.remove_body(101)):
        with pytest.raises(KeyError):
            lookup()
    with pytest.raises(TypeError):
        w.add_body(mass="heavy")
    with pytest.raises(TypeError):
        w.add_body(position=(0, 0, 0), spin=1)
    assert len(w) == 3  # a refused add leaves nothing behind


def test_body_vectors_are_read_only_copies():
    w = two_body_world()
    body = w.bodies[0]
    with pytest.raises(ValueError):
        body.position[0] = 5.0
    body.position = body.position + (1, 0, 0)
    assert body.position.tolist() == [2, 0, 0]
    with pytest.raises(ValueError):
        body.velocity = (1, 2)


def test_save_and_load_keep_the_world_and_its_views(tmp_path):
    source = next(e for e in EXAMPLES if e.stem == "rebound")
    w = orrenvale.World.load(source)
    w.step(10)
    w.save(tmp_path / "a.ovd")
    again = orrenvale.World.load(tmp_path / "a.ovd")
    assert np.array_equal(again.positions, w.positions) and again.name == w.name
    assert b"<key>Views</key>" in (tmp_path / "a.ovd").read_bytes()
    # Parameters left out of a load keep the engine's reset values, as a new
    # World has them.
    bodies_only = orrenvale.World.load(source, views=False, parameters=False)
    assert params(bodies_only) == params(orrenvale.World()) and len(bodies_only) == len(w)
    bodies_only.save(tmp_path / "b.ovd")
    assert b"<key>Views</key>" not in (tmp_path / "b.ovd").read_bytes()


def params(w):
    return (w.time_step, w.gravitational_constant, w.merge, w.restitution, w.adaptive,
            w.trace_history_points, w.name, w.milliseconds_per_update, w.elapsed_time)


# One file of each kind the loader refuses: absent, unreadable, not a datafile.
BAD_FILES = {
    "missing": None,
    "not-xml": b"hello",
    "array-root": b'<?xml version="1.0"?><plist version="1.0"><array/></plist>',
}


@pytest.mark.parametrize("content", BAD_FILES.values(), ids=BAD_FILES.keys())
def test_bad_file_raises_with_the_runners_message(batch, tmp_path, content):
    path = tmp_path / "bad.ovd"
    if content is not None:
        path.write_bytes(content)
    with pytest.raises(orrenvale.DatafileError) as raised:
        orrenvale.World.load(path)
    status, _, err = run([batch, str(path)])
    assert status == 1
    assert err.decode() == f"orrenvale-batch: {raised.value}\n"
    assert str(raised.value).startswith(f"{path}: ")


def test_unwritable_save_raises_with_the_file_and_reason(tmp_path):
    path = tmp_path / "no-such-folder" / "x.ovd"
    with pytest.raises(orrenvale.DatafileError) as raised:
        two_body_world().save(path)
    assert str(raised.value).startswith(f"{path}: cannot be written (")
