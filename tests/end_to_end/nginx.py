"""A real download server on the loopback address: nginx with a password, for the end-to-end tests."""

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
  access_log {folder}/access.log;
  client_body_temp_path {folder}/body;
  proxy_temp_path {folder}/proxy;
  fastcgi_temp_path {folder}/fastcgi;
  uwsgi_temp_path {folder}/uwsgi;
  scgi_temp_path {folder}/scgi;
  server {{
    listen 127.0.0.1:{port};
    listen 127.0.0.1:{secure_port} ssl;
    ssl_certificate {folder}/certificate.pem;
    ssl_certificate_key {folder}/key.pem;
    location / {{
      root {folder}/root;
      auth_basic "updates";
      auth_basic_user_file {folder}/users;
    }}
    location /moved/ {{ rewrite ^/moved/(.*)$ /$1 redirect; }}
    location /elsewhere/ {{ rewrite ^/elsewhere/(.*)$ http://localhost:{port}/$1 redirect; }}
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
    """Runs while it is entered. Files go into `files`; `address` and `secure_address` are without a path."""

    def __init__(self, password="plovatin"):
        self._password = password

    def __enter__(self):
        self._temporary = tempfile.TemporaryDirectory()
        folder = pathlib.Path(self._temporary.name)
        self.files = folder / "root" / PATH.strip("/")
        self.files.mkdir(parents=True)
        port, secure_port = free_ports(2)
        self.address = f"http://127.0.0.1:{port}"
        self.secure_address = f"https://127.0.0.1:{secure_port}"
        crypted = subprocess.run(["openssl", "passwd", "-apr1", self._password], check=True,
                                 capture_output=True, text=True).stdout
        (folder / "users").write_text(f"plovatin:{crypted}")
        # Signed by nobody but itself: no client may trust it.
        subprocess.run(["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "1",
                        "-subj", "/CN=127.0.0.1", "-addext", "subjectAltName=IP:127.0.0.1",
                        "-keyout", folder / "key.pem", "-out", folder / "certificate.pem"],
                       check=True, capture_output=True)
        configuration = folder / "nginx.conf"
        configuration.write_text(CONFIGURATION.format(folder=folder, port=port,
                                                      secure_port=secure_port))
        self._process = subprocess.Popen([program(), "-c", configuration, "-e", folder / "error.log"],
                                         stderr=subprocess.DEVNULL)
        self._await(port)
        return self

    def _await(self, port):
        for _ in range(100):
            try:
                socket.create_connection(("127.0.0.1", port), 1).close()
                return
            except OSError:
                time.sleep(0.05)
        self.__exit__()
        raise SystemExit("nginx does not start")

    def __exit__(self, *_):
        self._process.terminate()
        self._process.wait()
        self._temporary.cleanup()
