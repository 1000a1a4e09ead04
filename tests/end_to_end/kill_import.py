#!/usr/bin/env python3
"""Kills imports at random moments and imports again.

After each kill the product table must be sound, and the same update must apply at once and leave
what an import leaves that nobody kills. Goes on until enough kills have fallen between the first and
the last write to the file, and fails when they never do.

    kill_import.py PAPTOOL [--kills N] [--articles N] [--seed N]
"""

import pathlib
import shutil
import sys
import tempfile

import kills
from update_files import Table, demo_table, write_update


def main():
    options = kills.options_of(__doc__)
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        fresh = demo_table(options.paptool, folder).path
        before = fresh.read_bytes()
        update = folder / "KILL.PRC"
        write_update(update, [f"K{options.chance.randrange(10 ** 9):09d}" for _ in range(options.articles)])

        table = Table(options.paptool, folder / "Orv.pt")
        shutil.copy(fresh, table.path)
        whole_run = kills.seconds_of(lambda: table.apply(update, check=True))
        expected = table.contents()

        for attempt in kills.attempts(options.kills):
            shutil.copy(fresh, table.path)
            killed = kills.killed(table.apply_command(update), options.chance, whole_run)
            attempt.hit = killed and table.path.read_bytes() != before
            check = table.run("check")
            if check.returncode != 0:
                sys.exit(f"{attempt.name}: the product table is damaged:\n{check.stdout}{check.stderr}")
            again = table.apply(update)
            if again.returncode != 0:
                sys.exit(f"{attempt.name}: importing again failed:\n{again.stdout[-2000:]}{again.stderr}")
            if table.contents() != expected:
                sys.exit(f"{attempt.name}: importing again gave something else than importing once")


if __name__ == "__main__":
    main()
