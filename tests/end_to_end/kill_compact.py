#!/usr/bin/env python3
"""Kills compactions at random moments.

After each kill the product table must be there and be the old file, byte for byte, or the whole
compacted one, and compacting again must succeed and leave nothing beside it. Goes on until enough
kills have fallen between the first write of a compaction and its last one, the step that replaces
the file, and fails when they never do.

    kill_compact.py PAPTOOL [--kills N] [--articles N] [--seed N]
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

# How many kills hit a compaction depends on the machine; this many for each that must.
ATTEMPTS_PER_KILL = 10


def neighbours(table):
    return [path for path in table.path.parent.iterdir() if path != table.path and path.is_file()]


def make_table(options, folder, chance):
    """A product table that compaction makes smaller."""
    subprocess.run([options.paptool, "demo", str(folder / "demo")], check=True,
                   stdout=subprocess.DEVNULL)
    table = Table(options.paptool, folder / "demo" / "Orv.pt")
    codes = [f"C{chance.randrange(10 ** 9):09d}" for _ in range(options.articles)]
    update = folder / "COMPACT.PRC"
    write_update(update, codes)
    table.apply(update, check=True)
    return table


def time_of_compaction(table, before):
    table.path.write_bytes(before)
    begin = time.monotonic()
    table.run("compact", check=True)
    return time.monotonic() - begin


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
        made = make_table(options, folder, chance)
        before = made.path.read_bytes()
        expected = made.contents()

        (folder / "work").mkdir()
        table = Table(options.paptool, folder / "work" / "Orv.pt")
        whole_run = min(time_of_compaction(table, before) for _ in range(3))
        compacted_size = table.path.stat().st_size
        if compacted_size >= len(before):
            sys.exit("the product table has nothing to compact: the run would mean nothing")

        attempts = between_writes = replaced = 0
        while between_writes < options.kills:
            if attempts == options.kills * ATTEMPTS_PER_KILL:
                sys.exit(f"of {attempts} kills only {between_writes} fell into a compaction")
            attempts += 1
            where = f"kill {attempts}"
            shutil.rmtree(table.path.parent)
            table.path.parent.mkdir()
            table.path.write_bytes(before)
            process = subprocess.Popen(
                [options.paptool, "compact", "--table", str(table.path)],
                stdout=subprocess.DEVNULL)
            time.sleep(chance.random() * whole_run)
            process.send_signal(signal.SIGKILL)
            killed = process.wait() == -signal.SIGKILL

            begun = any(path.stat().st_size > 0 for path in neighbours(table))
            if not table.path.exists():
                sys.exit(f"{where}: no product table")
            if table.path.read_bytes() == before:
                between_writes += killed and begun
            else:
                replaced += 1
                check = table.run("check")
                if check.returncode != 0 or table.contents() != expected:
                    sys.exit(f"{where}: the product table is neither the old one nor the compacted "
                             f"one\n{check.stdout}{check.stderr}")
            again = table.run("compact")
            if again.returncode != 0:
                sys.exit(f"{where}: compacting again failed:\n{again.stdout}{again.stderr}")
            if neighbours(table):
                sys.exit(f"{where}: left behind: {neighbours(table)}")
            if table.path.stat().st_size != compacted_size or table.contents() != expected:
                sys.exit(f"{where}: compacting again gave something else")

    print(f"{attempts} kills, {between_writes} between the first and the last write, "
          f"{replaced} after it")


if __name__ == "__main__":
    main()
