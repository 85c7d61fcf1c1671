# The module steps worlds to the same bits as orrenvale-batch.
import pytest

import orrenvale
from conftest import EXAMPLES, run

# Every example with fixed steps, and adaptive stepping on two small worlds (a
# refined step of the sixty-body world takes seconds).
CASES = [(example, False, 500) for example in EXAMPLES] + [
    (example, True, 50) for example in EXAMPLES if example.stem in ("figure-eight", "rebound")
]


@pytest.mark.parametrize(
    "example, adaptive, steps",
    CASES,
    ids=[f"{e.stem}-{'adaptive' if a else 'fixed'}" for e, a, _ in CASES],
)
def test_exact_log_matches_the_runner(batch, tmp_path, example, adaptive, steps):
    world = orrenvale.World.load(example)
    world.adaptive = adaptive
    path = tmp_path / "world.ovd"
    world.save(path)
    world = orrenvale.World.load(path)
    bodies_before = len(world)

    lines = []
    done = world.step(steps, callback=lambda w, k: lines.append(w.log_line(exact=True)))

    status, out, err = run([batch, "-n", str(steps), "--exact", "--log", "-", str(path)])
    assert status == 0, err
    assert done == steps
    assert "".join(lines).encode() == out
    if example.stem == "planet-formation" and not adaptive:
        # The comparison covers merges: bodies were absorbed during the run.
        assert len(world) < bodies_before


def test_plain_log_line_has_six_decimals():
    # The line's format is the runner's own; only the choice of reals is the module's.
    assert orrenvale.World().log_line() == "0.000000\n"
