#!/usr/bin/env python3
"""Kills imports at random moments and imports again.

After each kill the product table must be sound, and the same update must apply at once and leave
what an import leaves that nobody kills. Goes on until enough kills have fallen between the first and
the last write to the file, and fails when they never do.

    kill_import.py PAPTOOL [--kills N] [--articles N] [--seed N]
"""

import argparse
import pathlib
import random
import shutil
import signal
import subprocess
import sys
import tempfile
import time

from update_files import Table, write_update

# How many kills hit the import depends on the machine; this many for each that must.
ATTEMPTS_PER_KILL = 10


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("paptool")
    parser.add_argument("--kills", type=int, default=30,
                        help="kills that must fall between the first and the last write")
    parser.add_argument("--articles", type=int, default=1500)
    parser.add_argument("--seed", type=int, default=1)
    options = parser.parse_args()
    chance = random.Random(options.seed)

    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        subprocess.run([options.paptool, "demo", str(folder / "demo")], check=True,
                       stdout=subprocess.DEVNULL)
        fresh = folder / "demo" / "Orv.pt"
        before = fresh.read_bytes()
        codes = [f"K{chance.randrange(10 ** 9):09d}" for _ in range(options.articles)]
        update = folder / "KILL.PRC"
        write_update(update, codes)

        table = Table(options.paptool, folder / "Orv.pt")
        shutil.copy(fresh, table.path)
        begin = time.monotonic()
        table.apply(update, check=True)
        whole_run = time.monotonic() - begin
        expected = table.contents()

        attempts = between_writes = 0
        while between_writes < options.kills:
            if attempts == options.kills * ATTEMPTS_PER_KILL:
                sys.exit(f"of {attempts} kills only {between_writes} fell into the import")
            attempts += 1
            shutil.copy(fresh, table.path)
            process = subprocess.Popen(table.apply_command(update), stdout=subprocess.DEVNULL)
            time.sleep(chance.random() * whole_run)
            process.send_signal(signal.SIGKILL)
            killed = process.wait() == -signal.SIGKILL
            if killed and table.path.read_bytes() != before:
                between_writes += 1
            check = table.run("check")
            if check.returncode != 0:
                sys.exit(f"kill {attempts}: the product table is damaged:\n{check.stdout}{check.stderr}")
            again = table.apply(update)
            if again.returncode != 0:
                sys.exit(f"kill {attempts}: importing again failed:\n"
                         f"{again.stdout[-2000:]}{again.stderr}")
            if table.contents() != expected:
                sys.exit(f"kill {attempts}: importing again gave something else than importing once")

    print(f"{attempts} kills, {between_writes} between the first and the last write")


if __name__ == "__main__":
    main()
