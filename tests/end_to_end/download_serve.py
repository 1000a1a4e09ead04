#!/usr/bin/env python3
"""The demo's download server and the download page together: what `paptool serve` offers, and to whom.

    download_serve.py PAPTOOL DOWNLOAD_PAGE
"""

import base64
import http.client
import pathlib
import subprocess
import sys
import tempfile
import urllib.parse

PATH = "/orv/PAP32SP7/"


def expect(actual, wanted, what):
    if actual != wanted:
        sys.exit(f"{what}:\n  {actual}\ninstead of\n  {wanted}")


def get(address, path, login=b"plovatin:plovatin"):
    connection = http.client.HTTPConnection(address, timeout=30)
    connection.request("GET", path, headers={
        "Authorization": "Basic " + base64.b64encode(login).decode()})
    answer = connection.getresponse()
    body = answer.read()
    connection.close()
    return answer.status, body


class Server:
    def __init__(self, paptool, folder):
        self._command = [paptool, "serve", str(folder), "--port", "0"]

    def __enter__(self):
        self._process = subprocess.Popen(self._command, stdout=subprocess.PIPE, text=True)
        first = self._process.stdout.readline()
        self.url = next(word for word in first.split() if word.startswith("http://"))
        self.address = urllib.parse.urlsplit(self.url).netloc
        return self

    def __exit__(self, *_):
        self._process.terminate()
        self._process.communicate()


def prepare(folder):
    """Adds files that the index leaves out, and one whose remark needs care."""
    sample = (folder / "20260302_VELDHAVEN_PROFIEL.PRC").read_bytes()
    (folder / "a,comma_VELDHAVEN_PROFIEL.PRC").write_bytes(sample)
    (folder / "broken_VELDHAVEN_PROFIEL.PRC").write_bytes(b"[DATE]\r\n-9990101\r\n")
    (folder / "notes_VELDHAVEN_PROFIEL.txt").write_bytes(b"no update")
    remark = sample.replace(b"Tussentijdse prijsronde.", b"Een, twee\r\ndrie")
    (folder / "caf\u00e9_VELDHAVEN_PROFIEL.prc").write_bytes(remark)
    return sample, remark


def refusals(server, folder):
    (folder.parent / "outside_VELDHAVEN_PROFIEL.PRC").write_bytes(b"secret")
    for path in ("..%2Foutside_VELDHAVEN_PROFIEL.PRC", "../outside_VELDHAVEN_PROFIEL.PRC",
                 "notes_VELDHAVEN_PROFIEL.txt", "missing_X_Y.PRC", ""):
        expect(get(server.address, PATH + path)[0], 404, path)
    for login in (b"plovatin:", b"plovatin:plovatin2", b""):
        expect(get(server.address, PATH + "Info.txt", login), (401, b""), f"login {login}")


def main():
    paptool, page = sys.argv[1:]
    with tempfile.TemporaryDirectory() as name:
        demo = pathlib.Path(name) / "demo"
        subprocess.run([paptool, "demo", str(demo)], check=True, stdout=subprocess.DEVNULL)
        folder = demo / "server"
        sample, remark = prepare(folder)
        with Server(paptool, folder) as server:
            status, index = get(server.address, PATH + "Info.txt")
            lines = index.decode("cp1252").split("\r\n")
            expect((status, lines[0], lines[-1]), (200, "OrvPapInfo", ""), "the index")
            expect([line.split(",")[0] for line in lines[1:-1]],
                   ["20260302_VELDHAVEN_PROFIEL.PRC", "20260309_BRUGMEER_BUIS.PRC",
                    "20260316_OOSTRAND_RVSBUIS.PRC", "caf\u00e9_VELDHAVEN_PROFIEL.prc"],
                   "the files in the index")
            expect(lines[-2].split(",")[3:], ["20260302", str(len(remark)), "Een; twee drie"],
                   "a line of the index")
            refusals(server, folder)
            done = subprocess.run([page, server.url[:server.url.index("/orv/")], str(demo)],
                                  capture_output=True, text=True, encoding="utf-8", timeout=60)
            expect(done.stdout.count("status: The file has been downloaded."), 3, done.stdout)
            fetched = demo / "PAP32"
            expect((fetched / "20260302_VELDHAVEN_PROFIEL.PRC").read_bytes() == sample, True,
                   "a file as it is")
            expect((fetched / "caf\u00e9_VELDHAVEN_PROFIEL.prc").read_bytes() == remark, True,
                   "a file with another letter in its name")
            again = subprocess.run([paptool, "serve", str(folder), "--port",
                                    server.address.split(":")[1]], capture_output=True, text=True,
                                   timeout=20)
            expect((again.returncode, "--port" in again.stderr), (1, True), "a port in use")
        nowhere = subprocess.run([paptool, "serve", str(demo / "nowhere")], capture_output=True,
                                 timeout=20)
        expect(nowhere.returncode, 2, "a folder that is none")
    print("ok: the download server serves the download page")


if __name__ == "__main__":
    main()
