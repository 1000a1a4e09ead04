#!/usr/bin/env python3
"""Kills compactions at random moments.

After each kill the product table must be there and be the old file, byte for byte, or the whole
compacted one, and compacting again must succeed and leave nothing beside it. Goes on until enough
kills have fallen between the first write of a compaction and its last one, the step that replaces
the file, and fails when they never do.

    kill_compact.py PAPTOOL [--kills N] [--articles N] [--seed N]
"""

import pathlib
import shutil
import sys
import tempfile

import kills
from update_files import Table, demo_table, write_update


def neighbours(table):
    return [path for path in table.path.parent.iterdir() if path != table.path and path.is_file()]


def main():
    options = kills.options_of(__doc__)
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        made = demo_table(options.paptool, folder)  # which the import makes one to compact
        update = folder / "COMPACT.PRC"
        write_update(update, [f"C{options.chance.randrange(10 ** 9):09d}" for _ in range(options.articles)])
        made.apply(update, check=True)
        before = made.path.read_bytes()
        expected = made.contents()

        table = Table(options.paptool, folder / "work" / "Orv.pt")

        def begin_anew():
            shutil.rmtree(table.path.parent, ignore_errors=True)
            table.path.parent.mkdir()
            table.path.write_bytes(before)

        def compact():
            begin_anew()
            table.run("compact", check=True)

        whole_run = min(kills.seconds_of(compact) for _ in range(3))
        compacted_size = table.path.stat().st_size
        if compacted_size >= len(before):
            sys.exit("the product table has nothing to compact: the run would mean nothing")

        for attempt in kills.attempts(options.kills):
            begin_anew()
            killed = kills.killed([options.paptool, "compact", "--table", str(table.path)],
                                  options.chance, whole_run)
            begun = any(path.stat().st_size > 0 for path in neighbours(table))
            if not table.path.exists():
                sys.exit(f"{attempt.name}: no product table")
            if table.path.read_bytes() == before:
                attempt.hit = killed and begun
            else:
                check = table.run("check")
                if check.returncode != 0 or table.contents() != expected:
                    sys.exit(f"{attempt.name}: the product table is neither the old one nor the "
                             f"compacted one\n{check.stdout}{check.stderr}")
            again = table.run("compact")
            if again.returncode != 0:
                sys.exit(f"{attempt.name}: compacting again failed:\n{again.stdout}{again.stderr}")
            if neighbours(table):
                sys.exit(f"{attempt.name}: left behind: {neighbours(table)}")
            if table.path.stat().st_size != compacted_size or table.contents() != expected:
                sys.exit(f"{attempt.name}: compacting again gave something else")


if __name__ == "__main__":
    main()
