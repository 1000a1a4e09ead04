#!/usr/bin/env python3
"""Checks with independent readers that what we read and write is what is in the file.

    check_files.py --paptool PATH --modules FOLDER

After each update of the demo installation, applied one by one, the product table must pass
`paptool check` and be the same in every reader (see compare_readers.py). The folder that
ORVPAP_CHANGED_FILES names holds product tables, and databases without password, that other tests
changed; they are read too.
Where ORVPAP_SHARED names the folder of sample files, its files are read, and the demo's updates are
applied to copies of its product tables. All of these are then compacted, and must be as before, no
larger, and without anything that only a lenient reader lets pass. Exits with 1 when anything differs.
"""

import argparse
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
PASSWORD = "quorbelintax"

# The register of processed updates, and the rules of its columns as mdb-prop prints them.
REGISTER = "PriceUpdates"
REGISTER_RULES = {"FileName": {"AllowZeroLength: no", "Required: yes"},
                  "Date": {"Required: no"},
                  "Assortiment": {"AllowZeroLength: no", "Required: no"},
                  "Supplier": {"AllowZeroLength: no", "Required: no"},
                  "DateProcessed": {"Required: no"}}

# Exit statuses of `paptool apply`: every record taken, or some refused.
APPLIED, REFUSALS = 0, 1


class Checks:
    """Runs the checks and remembers whether one failed."""

    def __init__(self, options):
        self.paptool = options.paptool.resolve()
        self.name = self.paptool.name
        self.modules = options.modules
        self.failures = 0

    def fail(self, text):
        print(f"FAILED: {text}")
        self.failures += 1

    def run(self, *command):
        """A paptool command; what it printed is shown only when it fails unexpectedly."""
        return subprocess.run([self.paptool, *map(str, command)], capture_output=True, text=True,
                              check=False, stdin=subprocess.DEVNULL)

    def compare(self, file, password, *options):
        """Every reader must see the same in this file."""
        command = [sys.executable, HERE / "compare_readers.py", file, "--password", password,
                   "--paptool", self.paptool, "--modules", self.modules, *options]
        if subprocess.run(list(map(str, command)), check=False).returncode != 0:
            self.fail(f"the readers disagree about {file}")

    def check(self, file, password, *options):
        """A file must be sound and the same in every reader."""
        done = self.run("check", "--table", file, "--password", password)
        if done.returncode != 0:
            self.fail(f"paptool check of {file}:\n{done.stdout}{done.stderr}")
        self.compare(file, password, *options)

    def check_register(self, file):
        """Another reader must find the register's rules, where the file has a register."""
        tables = subprocess.run(["mdb-tables", "-1", file], capture_output=True, text=True,
                                check=True).stdout.splitlines()
        if REGISTER not in tables:
            return
        listed = subprocess.run(["mdb-prop", file, REGISTER], capture_output=True, text=True,
                                check=True).stdout
        groups = [[line.strip() for line in group.splitlines()] for group in listed.split("\n\n")]
        rules = {group[0].removeprefix("name: "): set(group[1:]) for group in groups if group}
        for column, wanted in REGISTER_RULES.items():
            if not wanted <= rules.get(column, set()):
                self.fail(f"{file}: {REGISTER}.{column} has the rules {rules.get(column)}")

    def rows(self, file, password):
        """The rows of every user table, by its name, whatever their order."""
        def lines(*command):
            return self.run(*command, "--table", file, "--password", password).stdout.splitlines()
        names = [line.split("\t")[0] for line in lines("tables")]
        return {name: sorted(lines("rows", name)) for name in names}

    def compact(self, file, password):
        """Compacts a file; it must hold the same afterwards, for every reader."""
        rows, size = self.rows(file, password), file.stat().st_size
        done = self.run("compact", "--table", file, "--password", password)
        print(f"{file.name} compacted: {done.stdout.strip()}")
        if done.returncode != 0:
            self.fail(f"paptool compact of {file}:\n{done.stdout}{done.stderr}")
        if self.rows(file, password) != rows or file.stat().st_size > size:
            self.fail(f"compaction changed the contents of {file}, or made it larger")
        self.check(file, password)

    def apply(self, updates, table):
        """Applies updates one by one, with a check after each; returns their exit statuses."""
        statuses = []
        for update in updates:
            done = self.run("apply", "--no-backup", "--log", table.with_suffix(".log"),
                            "--table", table, update)
            statuses.append(done.returncode)
            refused = sum(line.startswith("! ") for line in done.stdout.splitlines())
            print(f"{update.name} into {table.name}: exit status {done.returncode}, "
                  f"{refused} refusals")
            if done.returncode not in (APPLIED, REFUSALS):
                self.fail(f"apply {update.name}:\n{done.stdout}{done.stderr}")
            self.check(table, PASSWORD)
        return statuses


def files_in(folder, pattern):
    return sorted(pathlib.Path(folder).glob(pattern)) if folder else []


def check_demo(checks, work):
    """The demo installation, whose updates are returned."""
    demo = work / "demo"
    done = checks.run("demo", demo)
    updates = files_in(demo / "PAP32", "*.PRC")
    if done.returncode != 0 or not updates:
        checks.fail(f"paptool demo:\n{done.stdout}{done.stderr}")
        return []
    checks.check(demo / "Orv.pt", PASSWORD)
    statuses = checks.apply(updates, demo / "Orv.pt")
    checks.check_register(demo / "Orv.pt")  # the import made it
    if set(statuses) != {APPLIED, REFUSALS}:
        checks.fail(f"the demo should have updates with and without refusals, found {statuses}")
    checks.compact(demo / "Orv.pt", PASSWORD)
    return updates


def check_samples(checks, work, shared, updates):
    """The sample files kept beside the project."""
    if not shared:
        print("ORVPAP_SHARED is not set: no sample files are read")
        return
    for sample in files_in(shared, "jet/samples/*.mdb"):
        checks.compare(sample, "", "--lenient")
        copy = work / sample.name
        shutil.copyfile(sample, copy)
        checks.compact(copy, "")
    for original in files_in(shared, "product-tables/*.pt"):
        checks.compare(original, PASSWORD)
        table = work / original.name
        shutil.copyfile(original, table)
        checks.apply(updates, table)
        checks.compact(table, PASSWORD)


def main():
    parser = argparse.ArgumentParser(description=__doc__.partition("\n")[0])
    parser.add_argument("--paptool", type=pathlib.Path, required=True)
    parser.add_argument("--modules", type=pathlib.Path, required=True)
    checks = Checks(parser.parse_args())
    # Lines of the comparing processes and our own must come in order.
    sys.stdout.reconfigure(line_buffering=True)
    with tempfile.TemporaryDirectory(prefix="orvpap-readers-") as folder:
        work = pathlib.Path(folder)
        updates = check_demo(checks, work)
        check_samples(checks, work, os.environ.get("ORVPAP_SHARED"), updates)
        changed = os.environ.get("ORVPAP_CHANGED_FILES")
        databases, tables = files_in(changed, "*.mdb"), files_in(changed, "*.pt")
        print(f"Tests have kept {len(databases)} databases and {len(tables)} product tables.")
        for database in databases:
            checks.check(database, "", "--lenient")
            checks.check_register(database)
        for table in tables:
            checks.check(table, PASSWORD)
    return 1 if checks.failures else 0


if __name__ == "__main__":
    sys.exit(main())
