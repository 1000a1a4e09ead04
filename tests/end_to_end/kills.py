"""Kills a command at random moments until enough kills have hit its work."""

import argparse
import random
import signal
import subprocess
import sys
import time
import types

# How many kills hit the work depends on the machine; this many for each that must.
ATTEMPTS_PER_KILL = 10


def options_of(description):
    """The options of such a test; `chance` is the source of its random numbers."""
    parser = argparse.ArgumentParser(description=description.splitlines()[0])
    parser.add_argument("paptool")
    parser.add_argument("--kills", type=int, default=30,
                        help="kills that must fall between the first and the last write")
    parser.add_argument("--articles", type=int, default=1500)
    parser.add_argument("--seed", type=int, default=1)
    options = parser.parse_args()
    options.chance = random.Random(options.seed)
    return options


def attempts(kills):
    """A new attempt each, until so many of them were `hit`; ends the program when they never are."""
    hits = 0
    for number in range(1, kills * ATTEMPTS_PER_KILL + 1):
        attempt = types.SimpleNamespace(name=f"kill {number}", hit=False)
        yield attempt
        hits += attempt.hit
        if hits == kills:
            print(f"{number} kills, {hits} between the first and the last write")
            return
    sys.exit(f"of {kills * ATTEMPTS_PER_KILL} kills only {hits} fell between the writes")


def seconds_of(action):
    begin = time.monotonic()
    action()
    return time.monotonic() - begin


def killed(command, chance, whole_run):
    """Starts a command and kills it within the seconds of a whole run; whether it came to that."""
    process = subprocess.Popen(command, stdout=subprocess.DEVNULL)
    time.sleep(chance.random() * whole_run)
    process.send_signal(signal.SIGKILL)
    return process.wait() == -signal.SIGKILL
