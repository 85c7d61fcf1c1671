# python3 -m orrenvale is orrenvale-batch: same output, messages and status.
import subprocess
import sys

import pytest

from conftest import ENV, ROOT, run, run_module

FIGURE_EIGHT = str(ROOT / "examples" / "figure-eight.ovd")
REBOUND = str(ROOT / "examples" / "rebound.ovd")

# One case of each exit status, output stream and written file; "{tmp}" stands
# for a scratch directory of its own.
CASES = {
    "log-and-save-files": ["-n", "100", "--log", "{tmp}/log", "--save", "{tmp}/out.ovd", REBOUND],
    "log-and-summary": ["-n", "200", "--log", "-", "--summary", FIGURE_EIGHT],
    "exact-log": ["--exact", "--log=-", "-n50", REBOUND],
    "no-steps": ["-n", "0", "--summary", "--", FIGURE_EIGHT],
    "help": ["--help"],
    "unknown-option": ["--bogus", FIGURE_EIGHT],
    "no-world": ["--summary"],
    "missing-world": ["{tmp}/missing.ovd"],
    "unwritable-log": ["--log", "{tmp}/no-such-folder/log.txt", FIGURE_EIGHT],
}


@pytest.mark.parametrize("args", CASES.values(), ids=CASES.keys())
def test_output_status_and_written_files_are_the_runners(batch, tmp_path, args):
    outcomes = []
    for name, command in (("module", run_module), ("batch", lambda a: run([batch, *a]))):
        tmp = tmp_path / name
        tmp.mkdir()
        status, out, err = command([a.replace("{tmp}", str(tmp)) for a in args])
        files = {p.name: p.read_bytes() for p in tmp.iterdir()}
        outcomes.append((status, out, err.replace(bytes(tmp), b"{tmp}"), files))
    assert outcomes[0] == outcomes[1]


def test_closed_pipe_ends_the_run_as_the_runner_does(batch):
    args = ["-n", "100000", "--log", "-", FIGURE_EIGHT]
    endings = []
    for argv in ([batch, *args], [sys.executable, "-m", "orrenvale", *args]):
        with subprocess.Popen(argv, stdout=subprocess.PIPE, stderr=subprocess.PIPE, env=ENV) as p:
            p.stdout.read(10)
            p.stdout.close()
            endings.append((p.wait(), p.stderr.read()))
    assert endings == [(1, b"orrenvale-batch: -: cannot be written (Broken pipe)\n")] * 2


def test_progress_goes_to_standard_error():
    status, out, err = run_module(["--progress", "-n", "50", FIGURE_EIGHT])
    assert (status, out) == (0, b"")
    assert b"50/50 steps" in err
