#!/usr/bin/env python3
"""Kills imports at random moments and imports again.

After each kill the product table must open, every row it held before must be there, and the same
update must apply at once and completely. Prints how many kills fell between the first and the last
write to the file, and fails when too few did for the run to mean anything.

    kill_import.py PAPTOOL [--rounds N] [--articles N] [--seed N]
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

HEADER = """[VERSION]
3.2

[DATE]
20260105

[ASSORTMENTCODE]
KILL

[ASSORTMENTDESCRIPTION]
Sections for the kill test

[SUPPLIERCODE]
KILLSUP

[SUPPLIERDESCRIPTION]
Supplier for the kill test

[PrcDate]
20260105

[Remark]

[NEW SUPPLIER]
"KILLSUP","Supplier for the kill test",0,0

[NEW ASSORTMENT]
"KILL","Sections for the kill test",1,1,False,False,1,""

[NEW ASSSUPPL]
"KILL","KILLSUP",1

[NEW SERIE]
"KILLSER","Series for the kill test",7.85,False,""

"""


def write_update(path, codes):
    lines = ["[NEW ARTICLE]"]
    lines += [f'"KILLSER","{code}","Section {code}","",{100 + i % 300},60,60,6,6,4,0,0,1000,1000,0,0,0,0,""'
              for i, code in enumerate(codes)]
    lines += ["", "[UPDATE PRICEDATA]"]
    lines += [f'"{code}",{700 + i}.25,1,2,3,4,"","","S{i}"' for i, code in enumerate(codes)]
    text = HEADER + "\n".join(lines) + "\n\n"
    path.write_bytes(text.replace("\n", "\r\n").encode("cp1252"))


class Table:
    def __init__(self, paptool, path):
        self.paptool, self.path = paptool, path

    def run(self, *arguments):
        return subprocess.run([self.paptool, *arguments, "--table", str(self.path)],
                              capture_output=True, text=True, encoding="utf-8")

    def rows(self, table):
        done = self.run("rows", table)
        if done.returncode != 0:
            sys.exit(f"{table} cannot be read after a kill: {done.stderr}")
        lines = done.stdout.splitlines()
        names = lines[0].split("\t")
        return [dict(zip(names, line.split("\t"))) for line in lines[1:]]


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("paptool")
    parser.add_argument("--rounds", type=int, default=30)
    parser.add_argument("--articles", type=int, default=1500)
    parser.add_argument("--seed", type=int, default=1)
    options = parser.parse_args()
    chance = random.Random(options.seed)

    with tempfile.TemporaryDirectory() as folder:
        folder = pathlib.Path(folder)
        subprocess.run([options.paptool, "demo", str(folder / "demo")], check=True,
                       stdout=subprocess.DEVNULL)
        fresh = folder / "demo" / "Orv.pt"
        before = fresh.read_bytes()
        codes = [f"K{chance.randrange(10 ** 9):09d}" for _ in range(options.articles)]
        update = folder / "KILL.PRC"
        write_update(update, codes)
        known = {row["Code"] for row in Table(options.paptool, fresh).rows("Article")}

        table = Table(options.paptool, folder / "Orv.pt")
        apply = [options.paptool, "apply", "--table", str(table.path), str(update)]
        shutil.copy(fresh, table.path)
        begin = time.monotonic()
        subprocess.run(apply, check=True, stdout=subprocess.DEVNULL)
        whole_run = time.monotonic() - begin

        between_writes = 0
        for round_number in range(options.rounds):
            shutil.copy(fresh, table.path)
            process = subprocess.Popen(apply, stdout=subprocess.DEVNULL)
            time.sleep(chance.random() * whole_run)
            process.send_signal(signal.SIGKILL)
            killed = process.wait() == -signal.SIGKILL
            if killed and table.path.read_bytes() != before:
                between_writes += 1
            lost = known - {row["Code"] for row in table.rows("Article")}
            if lost:
                sys.exit(f"round {round_number}: articles lost by a kill: {sorted(lost)[:5]}")
            again = subprocess.run(apply, capture_output=True, text=True, encoding="utf-8")
            if again.returncode != 0:
                sys.exit(f"round {round_number}: importing again failed:\n"
                         f"{again.stdout[-2000:]}{again.stderr}")
            articles = table.rows("Article")
            missing = set(codes) - {row["Code"] for row in articles}
            ids = {row["ID"] for row in articles if row["Code"] in set(codes)}
            unpriced = ids - {row["fkArticle"] for row in table.rows("ArtPrice")}
            if missing:
                sys.exit(f"round {round_number}: articles missing after the second import")
            priced_codes = {row["Code"] for row in articles if row["ID"] not in unpriced}
            if not set(codes) <= priced_codes:
                sys.exit(f"round {round_number}: articles without price after the second import")

    print(f"{options.rounds} kills, {between_writes} between the first and the last write")
    if between_writes < options.rounds // 2:
        sys.exit("too few kills fell into the import for this run to mean anything")


if __name__ == "__main__":
    main()
