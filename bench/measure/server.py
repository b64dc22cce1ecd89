"""An epghost that runs, and what the kernel says of it."""
import json
import os
import pathlib
import re
import select
import shutil
import subprocess
import tempfile
import time
import urllib.parse
import urllib.request

TICKS = os.sysconf("SC_CLK_TCK")


class Failure(Exception):
    """The measurement cannot go on; the text says why."""


class Server:
    """Starts the program on a guide and stops it at the end of the block."""

    def __init__(self, epghost, guide, now, options=()):
        self._state = tempfile.mkdtemp(prefix="epghost-bench-")
        self._errors = open(pathlib.Path(self._state) / "errors", "w+", encoding="utf-8")
        begin = time.monotonic()
        self._process = subprocess.Popen(
            [epghost, "--guide", guide, "--state", self._state, "--now", now, "--port", "0", *options],
            stdout=subprocess.PIPE, stderr=self._errors, text=True)
        try:
            self.url = self._wait_for_url()
        except Failure:
            self.__exit__()
            raise
        self.ready_seconds = time.monotonic() - begin
        self.start_processor_seconds = self.processor_seconds()

    def _wait_for_url(self):
        if not select.select([self._process.stdout], [], [], 120)[0]:
            raise Failure("epghost was not ready within 120 s")
        line = self._process.stdout.readline()
        if not line.startswith("listening on "):
            self._process.wait(10)
            self._errors.seek(0)
            raise Failure(f"epghost did not start: {self._errors.read()}")
        return line.removeprefix("listening on ").strip().rstrip("/")

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._process.terminate()
        try:
            self._process.wait(20)
        except subprocess.TimeoutExpired:
            self._process.kill()
            self._process.wait()
        self._process.stdout.close()
        self._errors.close()
        shutil.rmtree(self._state, ignore_errors=True)

    def processor_seconds(self):
        """What all threads have used so far, in user and in kernel mode."""
        text = pathlib.Path(f"/proc/{self._process.pid}/stat").read_text(encoding="utf-8")
        fields = text.rpartition(")")[2].split()
        return (int(fields[11]) + int(fields[12])) / TICKS

    def resident_bytes(self):
        text = pathlib.Path(f"/proc/{self._process.pid}/status").read_text(encoding="utf-8")
        return int(re.search(r"VmRSS:\s+(\d+) kB", text).group(1)) * 1024

    def open_files(self):
        return len(os.listdir(f"/proc/{self._process.pid}/fd"))

    def runs(self):
        return self._process.poll() is None

    def settle(self):
        """Waits until what was asked for is done, though nobody waits for it any more."""
        used = self.processor_seconds()
        for _ in range(300):
            time.sleep(0.05)
            before, used = used, self.processor_seconds()
            if used == before:
                return
        raise Failure("epghost works on though nothing is asked of it")

    def answered(self):
        """How many requests below /ws it has answered."""
        lines = self.get("/set/metrics")[1].decode().splitlines()
        return sum(float(line.rpartition(" ")[2]) for line in lines
                   if line.startswith("epghost_http_answers_total") and 'resource="/ws/' in line)

    def send(self, method, path, body=None, accept=None):
        """One request: its status, body and headers."""
        request = urllib.request.Request(self.url + path, method=method,
                                         data=body.encode() if body is not None else None)
        if accept:
            request.add_header("Accept", accept)
        try:
            with urllib.request.urlopen(request, timeout=60) as answer:
                return answer.status, answer.read(), answer.headers
        except urllib.error.HTTPError as error:
            return error.code, error.read(), error.headers

    def get(self, path, accept=None):
        return self.send("GET", path, accept=accept)

    def get_json(self, path):
        status, body, _ = self.get(path)
        if status != 200:
            raise Failure(f"GET {path} was answered {status}")
        return json.loads(body)

    def sql(self, statement):
        return self.get_json("/ws/epg2?sql=" + urllib.parse.quote(statement))["items"]
