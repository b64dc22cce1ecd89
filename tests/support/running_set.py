"""An epghost for tests that are written in Python."""

import subprocess
import tempfile

READY = "listening on "


class RunningSet:
    """A set on a free port with a state folder of its own, from entering to leaving a `with` block; `url` is
    its URL, without a slash at the end."""

    def __init__(self, program, *options):
        self._command = [program, "--port", "0", "--log-level", "off", *options]
        self._process = None
        self._folder = None
        self.url = None

    def __enter__(self):
        self._folder = tempfile.TemporaryDirectory(prefix="epghost-")
        command = [*self._command, "--state", self._folder.name + "/state"]
        self._process = subprocess.Popen(command, stdout=subprocess.PIPE, text=True)
        line = self._process.stdout.readline()
        if not line.startswith(READY):
            self._end()
            raise RuntimeError(f"epghost is not ready: {line!r}")
        self.url = line.removeprefix(READY).strip().rstrip("/")
        return self

    def __exit__(self, *_):
        self._end()

    def _end(self):
        self._process.terminate()
        try:
            self._process.wait(timeout=60)
        except subprocess.TimeoutExpired:
            self._process.kill()
            self._process.wait()
        self._process.stdout.close()
        self._folder.cleanup()
