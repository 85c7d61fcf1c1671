"""python3 -m orrenvale: orrenvale-batch, with its options, output and exit status."""

import os
import signal
import sys

from orrenvale._orrenvale import run_batch


def main():
    # The runner behaves as the program does when it is not under Python: it
    # takes Ctrl+C itself (the run ends between or within steps, writing
    # nothing), and a closed pipe ends it with its message, so Python's own
    # handlers step aside.
    signal.signal(signal.SIGINT, signal.SIG_DFL)
    signal.signal(signal.SIGPIPE, signal.SIG_DFL)
    return run_batch([os.fsencode(arg) for arg in sys.argv[1:]])


if __name__ == "__main__":
    sys.exit(main())
