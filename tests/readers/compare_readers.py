#!/usr/bin/env python3
"""Compares what paptool reads in a database file with what two independent readers read in it.

    compare_readers.py FILE [--password P] [--paptool PATH] [--modules FOLDER] [--lenient]

Every user table is read by paptool, by mdbtools and by the npm package mdb-reader; their tables,
columns and rows must agree, whatever the order of the rows. Where the environment variable
ORVPAP_SHARED names a folder with jet/jetcheck.py, or ORVPAP_JETCHECK that program itself, the
program checks the file as well; strictly, unless --lenient says that other programs have left
something behind in it. Prints one line a difference and exits with 1 if any; exits with 2
when a reader is missing, for then nothing was compared.
"""

import argparse
import collections
import datetime
import decimal
import json
import os
import pathlib
import re
import shutil
import struct
import subprocess
import sys

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parent.parent
DEFAULT_PAPTOOL = ROOT / "build/debug/bin/paptool"
DEFAULT_MODULES = ROOT / "build/readers"

DATE_FORMAT = "%Y-%m-%d %H:%M:%S"
DATABASE_EPOCH = datetime.datetime(1899, 12, 30)
UNIX_EPOCH_DAYS = 25569  # from 1899-12-30 to 1970-01-01
MILLISECONDS_A_DAY = 86400 * 1000
MOST_SHOWN = 20

NULL = "\\N"
ESCAPES = {"\\t": "\t", "\\r": "\r", "\\n": "\n", "\\\\": "\\"}

# A table as one reader sees it: names of columns, and rows as tuples of values in a common form.
Table = collections.namedtuple("Table", "columns rows")


class ReaderFailed(Exception):
    """A reader is missing or refused the file."""


def run(command, environment=None):
    """The standard output of a command that must succeed."""
    if not shutil.which(command[0]):
        raise ReaderFailed(f"{command[0]} is missing")
    done = subprocess.run(command, capture_output=True, check=False,
                          env={**os.environ, **(environment or {})})
    if done.returncode != 0:
        detail = (done.stderr or done.stdout).decode("utf-8", "replace").strip()
        raise ReaderFailed(f"{' '.join(map(str, command))}: exit status {done.returncode}\n{detail}")
    return done.stdout.decode("utf-8")


# --- values in a common form -------------------------------------------------------------------
# The types are mdb-reader's names for them. The common form of a value is a text, or None for Null.


def exact_number(text):
    value = decimal.Decimal(text)
    return format(value.normalize() if value else decimal.Decimal(0), "f")


def single(text):
    try:
        return repr(struct.unpack("<f", struct.pack("<f", float(text)))[0])
    except OverflowError:
        return text


def date_of_milliseconds(text):
    """mdb-reader counts the day's time forwards before 1899-12-30 too; the file counts it from zero."""
    days = float(text) / MILLISECONDS_A_DAY + UNIX_EPOCH_DAYS
    seconds = int(abs(days - int(days)) * 86400 + 0.5)
    moment = DATABASE_EPOCH + datetime.timedelta(days=int(days), seconds=seconds)
    return f"{moment.year:04}{moment:-%m-%d %H:%M:%S}"


FROM_TEXT = {
    "boolean": str.capitalize,
    "currency": exact_number,
    "numeric": exact_number,
    "float": single,
    "double": lambda text: repr(float(text)),
    "binary": str.lower,
    "ole": str.lower,
    "repid": lambda text: re.sub(r"[^0-9a-f]", "", text.lower()),
}


def common_form(kind, text, special=None):
    if text is None:
        return None
    return {**FROM_TEXT, **(special or {})}.get(kind, str)(text)


def unescape(cell):
    """A cell of tab-separated text, as paptool and mdb-export write it."""
    if cell == NULL:
        return None
    return re.sub(r"\\[trn\\]", lambda match: ESCAPES[match[0]], cell)


def separated(text):
    """The lines of tab-separated text as lists of cells; only LF ends a line."""
    return [line.split("\t") for line in text.split("\n")[:-1]]


# --- the three readers -------------------------------------------------------------------------


def read_with_mdb_reader(file, password, modules):
    """All tables, and the type of every column, by table name."""
    if not (pathlib.Path(modules) / "node_modules/mdb-reader").is_dir():
        raise ReaderFailed(f"mdb-reader is missing in {modules}; tests/readers/install.sh installs it")
    command = ["node", str(HERE / "dump_with_mdb_reader.mjs"), str(modules), str(file)]
    tables, kinds = {}, {}
    special = {"datetime": date_of_milliseconds}
    for line in run(command + ([password] if password else [])).split("\n")[:-1]:
        table = json.loads(line)
        types = [column["type"] for column in table["columns"]]
        rows = [tuple(common_form(kind, value, special) for kind, value in zip(types, row))
                for row in table["rows"]]
        tables[table["name"]] = Table([column["name"] for column in table["columns"]], rows)
        kinds[table["name"]] = types
    return tables, kinds


def table_of_text(text, kinds, special=None):
    header, *lines = separated(text)
    rows = [tuple(common_form(kind, unescape(cell), special) for kind, cell in zip(kinds, cells))
            if len(cells) == len(kinds) else tuple(cells) for cells in lines]
    return Table(header, rows)


def read_with_paptool(file, password, paptool, kinds):
    """All tables, and the number of rows that the table list gives for each."""
    options = ["--table", str(file)] + (["--password", password] if password is not None else [])
    counts = {name: int(count)
              for name, count in separated(run([str(paptool), "tables", *options]))}
    tables = {name: table_of_text(run([str(paptool), "rows", *options, name]),
                                  kinds.get(name, []))
              for name in counts}
    return tables, counts


def guid_of_mdbtools(text):
    """mdb-export takes a GUID for binary, and prints its text in hex."""
    return FROM_TEXT["repid"](bytes.fromhex(text).decode("ascii"))


def read_with_mdbtools(file, kinds):
    """All tables; mdbtools asks for no password."""
    options = ["-Q", "-e", "-B", "-d", "\t", "-0", NULL, "-b", "hex",
               "-D", DATE_FORMAT, "-T", DATE_FORMAT]
    special = {"float": str, "double": str, "repid": guid_of_mdbtools}
    tables = {}
    for name in filter(None, run(["mdb-tables", "-1", str(file)]).split("\n")):
        text = run(["mdb-export", *options, str(file), name])
        columns, rows = table_of_text(text, kinds.get(name, []), special)
        tables[name] = Table(columns, [tuple(value or None for value in row) for row in rows])
    return tables


def as_mdbtools_shows(kind, value):
    """A value as mdbtools shows it, which loses some: a single has 8 significant digits and a
    double 16, one too few to tell neighbouring numbers apart; binary ends at its first zero byte;
    an empty value may be Null."""
    if not value:
        return None
    if kind in ("float", "double"):
        return format(float(value), ".8g" if kind == "float" else ".16g")
    if kind == "binary":
        return bytes.fromhex(value).partition(b"\0")[0].hex() or None
    return value


def as_mdbtools_would_read(table, kinds):
    return Table(table.columns, [tuple(map(as_mdbtools_shows, kinds, row)) for row in table.rows])


# --- comparison --------------------------------------------------------------------------------


def shown(value):
    return "Null" if value is None else repr(value)


def by_first_column(rows):
    groups = collections.defaultdict(list)
    for row in rows.elements():
        groups[row[:1]].append(row)
    return groups


def differences(name, ours, theirs, reader):
    """What differs between paptool's table and another reader's: one text a difference."""
    if ours.columns != theirs.columns:
        yield f"{name}: columns {ours.columns} in paptool, {theirs.columns} in {reader}"
        return
    our_rows, their_rows = collections.Counter(ours.rows), collections.Counter(theirs.rows)
    only_ours = by_first_column(our_rows - their_rows)
    only_theirs = by_first_column(their_rows - our_rows)
    for first in sorted({*only_ours, *only_theirs}, key=str):
        mine, other = only_ours.get(first, []), only_theirs.get(first, [])
        if len(mine) == len(other) == 1 and len(mine[0]) == len(other[0]):
            cells = [f"{column} {shown(left)} in paptool, {shown(right)} in {reader}"
                     for column, left, right in zip(ours.columns, mine[0], other[0])
                     if left != right]
            yield f"{name}: row {shown(first[0])}: " + "; ".join(cells)
            continue
        for rows, who in ((mine, "paptool"), (other, reader)):
            for row in rows:
                yield f"{name}: only {who} has " + " | ".join(map(shown, row))


def compare(options):
    """All differences between the readers, and the number of tables and rows read."""
    theirs, kinds = read_with_mdb_reader(options.file, options.password, options.modules)
    ours, counts = read_with_paptool(options.file, options.password, options.paptool, kinds)
    also_theirs = read_with_mdbtools(options.file, kinds)
    problems = []
    for reader, tables in (("mdb-reader", theirs), ("mdbtools", also_theirs)):
        if set(ours) != set(tables):
            problems.append(f"tables {sorted(ours)} in paptool, {sorted(tables)} in {reader}")
    for name in sorted(set(ours) & set(theirs) & set(also_theirs)):
        problems += differences(name, ours[name], theirs[name], "mdb-reader")
        problems += differences(name, as_mdbtools_would_read(ours[name], kinds[name]),
                                also_theirs[name], "mdbtools")
        if counts[name] != len(ours[name].rows):
            problems.append(f"{name}: {counts[name]} rows in the list of tables, "
                            f"{len(ours[name].rows)} rows read")
    return problems, len(ours), sum(len(table.rows) for table in ours.values())


def independent_checker():
    """The independent checker of database files, where the environment names one."""
    named = os.environ.get("ORVPAP_JETCHECK")
    shared = os.environ.get("ORVPAP_SHARED")
    path = pathlib.Path(named) if named else pathlib.Path(shared) / "jet/jetcheck.py" if shared else None
    return path if path and path.is_file() else None


def check_independently(options):
    """The problems that the independent checker finds in the file."""
    checker = independent_checker()
    if not checker:
        return []
    command = [sys.executable, str(checker), str(options.file)]
    command += [] if options.lenient else ["--strict"]
    command += ["--password", options.password] if options.password else []
    done = subprocess.run(command, capture_output=True, text=True, check=False)
    if done.returncode == 0:
        return []
    return [f"{checker.name}: {line}" for line in (done.stdout + done.stderr).splitlines()]


def main():
    parser = argparse.ArgumentParser(description=__doc__.partition("\n")[0])
    parser.add_argument("file", type=pathlib.Path)
    parser.add_argument("--password", help="the file's password; \"\" for none")
    parser.add_argument("--paptool", default=DEFAULT_PAPTOOL)
    parser.add_argument("--modules", default=DEFAULT_MODULES, help="where npm installed mdb-reader")
    parser.add_argument("--lenient", action="store_true",
                        help="the file may hold what other programs leave behind")
    options = parser.parse_args()
    try:
        problems, tables, rows = compare(options)
    except ReaderFailed as failure:
        print(f"{options.file}: {failure}", file=sys.stderr)
        return 2
    problems += check_independently(options)
    for problem in problems[:MOST_SHOWN]:
        print(f"{options.file}: {problem}")
    if len(problems) > MOST_SHOWN:
        print(f"{options.file}: and {len(problems) - MOST_SHOWN} more")
    if not problems:
        print(f"ok: {options.file.name}: {tables} tables, {rows} rows, the same in every reader")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
