#!/usr/bin/env python3
"""Imports and compacts on a disk that is full: the user is told, the file stays sound, nothing finished is lost.

    full_disk.py PAPTOOL

The file may not grow beyond a limit (RLIMIT_FSIZE), which the program meets as it meets a full disk.
"""

import pathlib
import resource
import sys
import tempfile

from update_files import demo_table, write_update

PAGE = 4096
DISK_FULL_TEXT = "Not enough space on disk."


def expect(condition, what, done):
    if not condition:
        sys.exit(f"{what}\n{done.stdout[-2000:]}{done.stderr}")


def main():
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        table = demo_table(sys.argv[1], folder)
        codes = [f"F{i:05d}" for i in range(400)]
        update = folder / "FULL.PRC"
        write_update(update, codes)
        known = {row["Code"] for row in table.rows("Article")}

        # For several amounts of room: the failing write is another one each time.
        for room in (0, 1, 2, 3, 5, 8):
            limit = table.path.stat().st_size + room * PAGE
            done = table.apply(
                update, restore_signals=False,  # leaves the signal of the limit ignored
                preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit)))
            expect(done.returncode == 1, f"{room} pages of room: not reported as a failure", done)
            expect(DISK_FULL_TEXT in done.stdout, f"{room} pages of room: no word of the disk", done)
            check = table.run("check")
            expect(check.returncode == 0, f"{room} pages of room: the file is damaged", check)
            lost = known - {row["Code"] for row in table.rows("Article")}
            expect(not lost, f"{room} pages of room: articles lost: {sorted(lost)[:5]}", done)

        done = table.apply(update)
        expect(done.returncode == 0, "with room again the import still fails", done)
        expect(not table.unpriced(codes), "with room again the import is incomplete", done)

        # No room for the second file: the first one stays, alone.
        before = table.path.read_bytes()
        beside = sorted(table.path.parent.iterdir())
        for part in (0, 1, 2, 3):
            limit = PAGE + len(before) * part // 4
            done = table.run(
                "compact", restore_signals=False,
                preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit)))
            expect(done.returncode == 1 and DISK_FULL_TEXT in done.stderr,
                   f"room for {limit} bytes: compaction is not reported as a failure", done)
            expect(table.path.read_bytes() == before and sorted(table.path.parent.iterdir()) == beside,
                   f"room for {limit} bytes: compaction has left something", done)
    print("ok: a full disk is reported, and nothing is lost")


if __name__ == "__main__":
    main()
