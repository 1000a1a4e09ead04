#!/usr/bin/env python3
"""Kills copies of a file over another at random moments.

After each kill the target must be the old file or the new one, whole, and the next copy must succeed
and leave nothing else behind. Goes on until enough kills have fallen between the first and the last
write, and fails when they never do.

    kill_copy.py COPY_PAP_FILE [--kills N] [--megabytes N] [--seed N]
"""

import argparse
import pathlib
import random
import signal
import subprocess
import sys
import tempfile
import time

MEGABYTE = 1 << 20

# How many kills hit a copy depends on the machine; this many for each that must.
ATTEMPTS_PER_KILL = 10


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("program")
    parser.add_argument("--kills", type=int, default=30,
                        help="kills that must fall between the first and the last write")
    parser.add_argument("--megabytes", type=int, default=64)
    parser.add_argument("--seed", type=int, default=1)
    options = parser.parse_args()
    chance = random.Random(options.seed)

    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        source, target = folder / "Orv.pt", folder / "BACKUP.pt"
        new = chance.randbytes(options.megabytes * MEGABYTE)
        old = chance.randbytes(MEGABYTE)
        source.write_bytes(new)
        command = [options.program, str(source), str(target)]

        def copy():
            """How long a copy takes that nobody kills."""
            begin = time.monotonic()
            subprocess.run(command, check=True)
            return time.monotonic() - begin

        whole_run = min(copy() for _ in range(3))  # the disk is not always equally fast
        attempts = between_writes = replaced = 0
        while between_writes < options.kills:
            if attempts == options.kills * ATTEMPTS_PER_KILL:
                sys.exit(f"of {attempts} kills only {between_writes} fell into a copy")
            attempts += 1
            target.write_bytes(old)
            process = subprocess.Popen(command)
            time.sleep(chance.random() * whole_run)
            process.send_signal(signal.SIGKILL)
            killed = process.wait() == -signal.SIGKILL
            found = target.read_bytes()
            if found not in (old, new):
                sys.exit(f"kill {attempts}: the target is damaged, {len(found)} bytes long")
            begun = [file for file in folder.iterdir() if file not in (source, target)]
            written = sum(file.stat().st_size for file in begun)
            if killed and found == old and written > 0:
                between_writes += 1
            if found == new:
                replaced += 1

            whole_run = min(whole_run, copy())
            if target.read_bytes() != new:
                sys.exit(f"kill {attempts}: the next copy is not the source")
            if sorted(folder.iterdir()) != sorted((source, target)):
                sys.exit(f"kill {attempts}: the next copy left something behind")

    print(f"{attempts} kills, {between_writes} between the first and the last write, "
          f"{replaced} after the last")


if __name__ == "__main__":
    main()
