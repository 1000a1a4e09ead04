#!/usr/bin/env python3
"""Downloads from a real server with a password: the page's three steps against nginx.

    download_nginx.py PAPTOOL DOWNLOAD_PAGE

A walk in two runs, two of four offered files and then the rest; a password that the server refuses;
certificates that are trusted and not; a server that has moved.
"""

import pathlib
import subprocess
import sys
import tempfile

from nginx import Nginx

OLD_FILE = "20260202_BRUGMEER_BUIS.PRC"  # in the demo's update folder already
STEP_3 = "status: The chosen price updates are being fetched - click Next to continue"


def update(number, assortment="PROFIEL", supplier="VELDHAVEN"):
    return f"2026030{number}_{supplier}_{assortment}.PRC"


def line(name, size):
    return f"{name},Balken en profielen,Veldhaven,20260301,{size},Ronde\r\n"


class Walks:
    def __init__(self, page, folder):
        self.page, self.folder = page, folder

    def run(self, server, *arguments):
        done = subprocess.run([self.page, server, str(self.folder), *arguments], capture_output=True,
                              text=True, encoding="utf-8", timeout=120)
        if done.returncode != 0:
            sys.exit(f"download_page failed: {done.stderr}")
        return done.stdout.splitlines()


def names(lines, what):
    return [one.split("|")[3] for one in lines if one.startswith(what + ": ")]


def expect(actual, wanted, what):
    if actual != wanted:
        sys.exit(f"{what}:\n  {actual}\ninstead of\n  {wanted}")


def contents(folder):
    return {path.name: path.read_bytes() for path in (folder / "PAP32").iterdir()}


def fill(server, bodies):
    for name, body in bodies.items():
        (server.files / name).write_bytes(body)
    index = "".join(line(name, len(body)) for name, body in bodies.items())
    index += line(update(8, "ANDERS"), 10) + line(OLD_FILE, 10)
    (server.files / "Info.txt").write_bytes(("OrvPapInfo\r\n" + index).encode("cp1252"))


def walk_in_two_runs(walks, server, bodies):
    wanted = list(bodies)
    lines = walks.run(server.address, "--uncheck", wanted[1], "--uncheck", wanted[3])
    expect(names(lines, "offered"), [wanted[0], wanted[2]], "first run: checked")
    expect(names(lines, "unchecked"), [wanted[1], wanted[3]], "first run: unchecked")
    expect(lines[lines.index(STEP_3) + 1:],
           ["status: Downloaden bestand " + wanted[0], "status: The file has been downloaded.",
            "status: Downloaden bestand " + wanted[2], "status: The file has been downloaded."],
           "first run: status lines")
    lines = walks.run(server.address)
    expect(names(lines, "offered"), [wanted[1], wanted[3]], "second run")
    there = contents(walks.folder)
    for name, body in bodies.items():
        expect(there.get(name) == body, True, f"{name} came as it is")
    lines = walks.run(server.address)
    expect(lines[-1], "status: There is nothing to download.", "third run")
    # The first run of an installation clears the folder, so that everything is offered.
    expect(OLD_FILE in there, True, "files that the folder had stay")
    lines = walks.run(server.address, "--first-run", *(part for name in wanted + [OLD_FILE]
                                                       for part in ("--uncheck", name)))
    expect(names(lines, "unchecked"), wanted + [OLD_FILE], "after the clean-up")
    expect(contents(walks.folder), {}, "after the clean-up")


def protected(walks, server, bodies):
    """Certificates, and what may be sent where."""
    trust = ("--trust", server.authority)
    no_index = "message: The list of price updates cannot be fetched."
    for address, arguments, what in (
            (server.trusted_address, (), "a certificate that nobody vouches for"),
            (server.misnamed_address, trust, "a certificate for another name"),
            (server.trusted_address.replace("https", "HTTPS") + "/elsewhere", trust,
             "a redirect to an unprotected connection")):
        lines = walks.run(address, *arguments)
        expect(lines[-1].startswith(no_index), True, f"{what}: {lines[-1]}")
        expect(contents(walks.folder), {}, what)
        expect(server.was_led_off_protection(), False, what)
    lines = walks.run(server.trusted_address + "/moved", "--uncheck", OLD_FILE, *trust)
    expect(names(lines, "offered"), list(bodies), "a protected server that has moved")
    expect(contents(walks.folder), bodies, "all files came from where it has moved to")


def main():
    paptool, page = sys.argv[1:]
    with tempfile.TemporaryDirectory() as name, Nginx() as server, Nginx("other") as stranger:
        folder = pathlib.Path(name) / "demo"
        subprocess.run([paptool, "demo", str(folder)], check=True, stdout=subprocess.DEVNULL)
        walks = Walks(page, folder)
        bodies = {update(1): b"one", update(2): bytes(range(256)) * 40_000,
                  update(3, "PROFIEL.é ß%41"): b"three" * 60, update(4, "PLAAT"): b"\r\n\0\x1a" * 64}
        fill(server, bodies)
        fill(stranger, bodies)
        walk_in_two_runs(walks, server, bodies)
        lines = walks.run(stranger.address)
        expect(lines[-1], "message: The server did not return a valid list of price updates.",
               "a password that is refused")
        # Under another name it is another server, which gets no password.
        lines = walks.run(server.address + "/elsewhere")
        expect(lines[-1], "message: The server did not return a valid list of price updates.",
               "a redirect to another server")
        protected(walks, server, bodies)
    print("ok: the download page and nginx understand each other")


if __name__ == "__main__":
    main()
