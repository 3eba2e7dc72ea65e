"""A board, its daemon, a live wall on it and what watches that, for the tests in this folder.

Waiting is for something to happen, with a limit: a line, an event, a state. Nothing sleeps for luck."""

import http.client
import json
import os
import pathlib
import shutil
import signal
import socket
import subprocess
import tempfile
import time
import urllib.parse

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
BUILD = pathlib.Path(os.environ["QUIVORD_BUILD_DIR"])
LIMIT = 30  # seconds until something that should happen counts as not happening


def until(ask, what, limit=LIMIT):
    """The first true answer of `ask`, which is asked again and again."""
    end = time.monotonic() + limit
    while True:
        answer = ask()
        if answer:
            return answer
        if time.monotonic() > end:
            raise AssertionError(f"after {limit} s still not: {what}")
        time.sleep(0.02)


class Board:
    """A board folder of its own, and the daemon on it while it runs."""

    def __init__(self, *settings):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="quivord-browser-"))
        self.daemon = None
        subprocess.run([BUILD / "quivord-board", "create", self.folder, "fpga.load_ms=50", *settings],
                       check=True, stdout=subprocess.DEVNULL)

    def start(self):
        self.daemon = subprocess.Popen([BUILD / "quivord-board", "run", self.folder],
                                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        flag = self.folder / "etc/init.d/flag_fpgaload"
        until(lambda: flag.exists() and self.ctl("ping", "--count", "1", check=False), "the daemon answers")
        return self

    def stop(self):
        if self.daemon is not None:
            self.daemon.send_signal(signal.SIGTERM)
            self.daemon.wait()
            self.daemon = None

    def ctl(self, *words, check=True):
        run = subprocess.run([BUILD / "quivordctl", "--board", self.folder, *words], check=False,
                             capture_output=True, text=True)
        if check and run.returncode != 0:
            raise AssertionError(f"quivordctl {' '.join(words)}: {run.stderr}")
        return run.stdout if run.returncode == 0 else ""

    def tool(self, *words):
        subprocess.run([BUILD / "quivord-board", *words, "--board", self.folder], check=True,
                       stdout=subprocess.DEVNULL)

    def remove(self):
        self.stop()
        shutil.rmtree(self.folder, ignore_errors=True)


class Wall:
    """quivord-wall on a board folder, on a port of its own."""

    def __init__(self, folder, *options, port=0):
        command = [BUILD / "quivord-wall", "--board", folder, "--port", str(port), *options]
        self.process = subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        line = self.process.stdout.readline()
        if not line.startswith("http://"):
            said = self.process.communicate()[1]
            raise AssertionError(f"quivord-wall says: {line}{said}")
        self.url = line.split()[0]
        self.port = urllib.parse.urlsplit(self.url).port

    def rss_kib(self):
        status = pathlib.Path(f"/proc/{self.process.pid}/status").read_text()
        return int(status.split("VmRSS:")[1].split()[0])

    def ask(self, method, path, body=None, headers=None):
        """Status and text of a plain request."""
        connection = http.client.HTTPConnection("127.0.0.1", self.port, timeout=LIMIT)
        try:
            connection.request(method, path, body, headers or {})
            answer = connection.getresponse()
            return answer.status, answer.read().decode()
        finally:
            connection.close()

    def state(self):
        status, text = self.ask("GET", "/state")
        if status != 200:
            raise AssertionError(f"/state: {status} {text}")
        return json.loads(text)

    def raw(self, data, limit=LIMIT):
        """All that comes back for these bytes, until the connection ends."""
        with socket.create_connection(("127.0.0.1", self.port), timeout=limit) as peer:
            answer = b""
            try:
                peer.sendall(data)
                while piece := peer.recv(65536):
                    answer += piece
            except ConnectionError:
                pass
            return answer

    def stop(self):
        """Ends it; its exit status."""
        if self.process.poll() is None:
            self.process.send_signal(signal.SIGTERM)
        status = self.process.wait(LIMIT)
        for stream in (self.process.stdout, self.process.stderr):
            stream.close()
        return status


def merged(before, patch):
    """A JSON merge patch, applied."""
    if not isinstance(patch, dict):
        return patch
    after = dict(before) if isinstance(before, dict) else {}
    for key, value in patch.items():
        if value is None:
            after.pop(key, None)
        else:
            after[key] = merged(after.get(key), value)
    return after


class Stream:
    """The events of a wall, as a page gets them."""

    def __init__(self, wall):
        self.connection = http.client.HTTPConnection("127.0.0.1", wall.port, timeout=LIMIT)
        self.connection.request("GET", "/events")
        self.answer = self.connection.getresponse()
        self.status = self.answer.status
        self.state = None

    def next(self):
        """The next event: name, data, when it came."""
        name = None
        while True:
            line = self.answer.readline().decode().rstrip("\n")
            if line.startswith("event: "):
                name = line[7:]
            elif line.startswith("data: "):
                data = json.loads(line[6:])
                self.state = data if name == "state" else merged(self.state, data)
                return name, data, time.monotonic()

    def until(self, holds, what):
        end = time.monotonic() + LIMIT
        while self.state is None or not holds(self.state):
            if time.monotonic() > end:
                raise AssertionError(f"still not: {what}")
            self.next()
        return self.state

    def close(self):
        self.answer.close()
        self.connection.close()
