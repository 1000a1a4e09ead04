#!/usr/bin/env python3
"""Checks that a product table goes back and forth between the programs of two systems.

    check_exchange.py --paptool PATH --windows PATH --prefix FOLDER --modules FOLDER

Each program makes the demo installation; its first updates are applied by one program, which compacts
the table then, and the others by the other program. Whoever did what, the table must pass the check of
both programs, be the same in every independent reader, and hold the same rows. --windows names
paptool.exe, which runs under Wine in the installation --prefix. Exits with 1 when anything differs.
"""

import argparse
import pathlib
import subprocess
import sys
import tempfile

from check_files import APPLIED, PASSWORD, REFUSALS, REGISTER, Checks, files_in

ROOT = pathlib.Path(__file__).resolve().parents[2]


class WindowsChecks(Checks):
    """The same commands, run by the Windows program."""

    def __init__(self, options):
        super().__init__(options)
        self.name = "paptool.exe"
        self.wine = [ROOT / "tools/run-under-wine.sh", options.prefix.resolve(),
                     options.windows.resolve()]

    def run(self, *command):
        """Wine's drive Z is this system's root folder."""
        seen = [f"Z:{each}" if isinstance(each, pathlib.Path) else each for each in command]
        return subprocess.run([*self.wine, *seen], capture_output=True, text=True, check=False,
                              stdin=subprocess.DEVNULL)


def contents(checks, table):
    """The rows of every table; when an update was processed is not the same twice."""
    rows = checks.rows(table, PASSWORD)
    rows[REGISTER] = sorted(line.rpartition("\t")[0] for line in rows[REGISTER])
    return rows


def walk(work, first, second):
    """One program begins and the other goes on; returns what is in the table then."""
    demo = work / f"{first.name}-{second.name}"
    table = demo / "Orv.pt"
    print(f"{first.name} begins, {second.name} goes on:")
    if first.run("demo", demo).returncode != 0:
        first.fail("paptool demo")
    updates = files_in(demo / "PAP32", "*.PRC")
    half = len(updates) // 2
    for checks, part in ((first, updates[:half]), (second, updates[half:])):
        done = checks.run("apply", "--no-backup", "--log", demo / "log", "--table", table, *part)
        if done.returncode not in (APPLIED, REFUSALS):
            checks.fail(f"apply in {demo.name}:\n{done.stdout}{done.stderr}")
        for each in (first, second):
            each.check(table, PASSWORD)
        checks.compact(table, PASSWORD)
    first.check(table, PASSWORD)
    return contents(first, table)


def main():
    parser = argparse.ArgumentParser(description=__doc__.partition("\n")[0])
    for name in ("paptool", "windows", "prefix", "modules"):
        parser.add_argument("--" + name, type=pathlib.Path, required=True)
    options = parser.parse_args()
    sys.stdout.reconfigure(line_buffering=True)
    here, windows = Checks(options), WindowsChecks(options)
    with tempfile.TemporaryDirectory(prefix="orvpap-exchange-") as folder:
        work = pathlib.Path(folder)
        expected = walk(work, here, here)
        for first, second in ((here, windows), (windows, here), (windows, windows)):
            if walk(work, first, second) != expected:
                second.fail(f"{first.name} and {second.name} leave other rows")
    return 1 if here.failures or windows.failures else 0


if __name__ == "__main__":
    sys.exit(main())
