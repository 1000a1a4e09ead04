"""A real download server on the loopback address: nginx with a password and a certificate, for the end-to-end tests."""

import os
import pathlib
import shutil
import socket
import subprocess
import tempfile
import time

PATH = "/orv/PAP32SP7/"

CONFIGURATION = """
daemon off;
master_process off;
pid {folder}/nginx.pid;
error_log {folder}/error.log;
events {{ worker_connections 64; }}
http {{
  log_format plain "$scheme $args";
  access_log {folder}/access.log plain;
  client_body_temp_path {folder}/body;
  proxy_temp_path {folder}/proxy;
  fastcgi_temp_path {folder}/fastcgi;
  uwsgi_temp_path {folder}/uwsgi;
  scgi_temp_path {folder}/scgi;
  server {{
    listen 127.0.0.1:{port};
    listen 127.0.0.1:{secure_port} ssl;
    ssl_certificate {folder}/certificate.pem;
    ssl_certificate_key {folder}/certificate.key;
    location / {{
      root {folder}/root;
      auth_basic "updates";
      auth_basic_user_file {folder}/users;
    }}
    location /moved/ {{ rewrite ^/moved/(.*)$ /$1 redirect; }}
    location /elsewhere/ {{ rewrite ^/elsewhere/(.*)$ http://localhost:{port}/$1?from=$scheme redirect; }}
  }}
}}
"""


def program():
    found = shutil.which("nginx", path=os.environ.get("PATH", "") + ":/usr/sbin")
    if not found:
        raise SystemExit("nginx is missing; run tools/install-dependencies.sh test")
    return found


def free_ports(count):
    sockets = [socket.create_server(("127.0.0.1", 0)) for _ in range(count)]
    ports = [one.getsockname()[1] for one in sockets]
    for one in sockets:
        one.close()
    return ports


class Nginx:
    """Runs while it is entered. Files go into `files`; the addresses are without a path.

    Its certificate is for "localhost", signed by an authority of its own: `authority`.
    """

    def __init__(self, password="plovatin"):
        self._password = password

    def __enter__(self):
        self._temporary = tempfile.TemporaryDirectory()
        self._folder = folder = pathlib.Path(self._temporary.name)
        self.files = folder / "root" / PATH.strip("/")
        self.files.mkdir(parents=True)
        crypted = subprocess.run(["openssl", "passwd", "-apr1", self._password], check=True,
                                 capture_output=True, text=True).stdout
        (folder / "users").write_text(f"plovatin:{crypted}")
        self.authority = self._certify("authority", "CA:TRUE")
        self._certify("certificate", "CA:FALSE", "-addext", "subjectAltName=DNS:localhost",
                      "-CA", self.authority, "-CAkey", folder / "authority.key")
        for _ in range(5):  # somebody else may be quicker at taking a port that is free
            if self._start(*free_ports(2)):
                return self
        self._temporary.cleanup()
        raise SystemExit("nginx does not start")

    def _certify(self, name, constraints, *options):
        path = self._folder / f"{name}.pem"
        subprocess.run(["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "1",
                        "-subj", f"/CN=test {name}", "-addext", f"basicConstraints={constraints}",
                        "-keyout", path.with_suffix(".key"), "-out", path, *options],
                       check=True, capture_output=True)
        return path

    def _start(self, port, secure_port):
        self.address = f"http://127.0.0.1:{port}"
        self.trusted_address = f"https://localhost:{secure_port}"
        self.misnamed_address = f"https://127.0.0.1:{secure_port}"
        configuration = self._folder / "nginx.conf"
        configuration.write_text(CONFIGURATION.format(folder=self._folder, port=port,
                                                      secure_port=secure_port))
        self._process = subprocess.Popen(
            [program(), "-c", configuration, "-e", self._folder / "error.log"],
            stderr=subprocess.DEVNULL)
        end = time.monotonic() + 20
        while self._process.poll() is None and time.monotonic() < end:
            if (self._folder / "nginx.pid").exists():  # written when it listens
                return True
            time.sleep(0.02)
        self._process.kill()
        self._process.wait()
        return False

    def was_led_off_protection(self):
        return "http from=https" in (self._folder / "access.log").read_text()

    def __exit__(self, *_):
        self._process.terminate()
        self._process.wait()
        self._temporary.cleanup()
