"""The floors of the figures, by bench/Floor.cpp."""
import json
import select
import subprocess
import tempfile

from . import guides
from .server import Failure


class Floor:
    """The program that measures the least that the start and each request can cost, on a guide with some
    programmes booked. It runs as long as the block."""

    SECONDS = 600  # what one answer may take

    def __init__(self, program, guide, booked):
        self._errors = tempfile.TemporaryFile("w+")
        self._process = subprocess.Popen([program, guide, guides.START], stdin=subprocess.PIPE,
                                         stdout=subprocess.PIPE, stderr=self._errors, text=True)
        try:
            self.start = self._answer()
            for programme in booked:
                self._ask(f"book {programme}")
            self.preparation()  # which marks what is booked in the table that is measured on
        except BaseException:
            self.__exit__()
            raise

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._process.kill()
        self._process.communicate()
        self._errors.close()

    def preparation(self):
        """What every request does before its own statement."""
        return self._ask("preparation")

    def request(self, request, form):
        path, _, query = request.path.removeprefix("/ws/").partition("?")
        return self._ask(f"get {form} {path} {query}")

    def _ask(self, line):
        try:
            self._process.stdin.write(line + "\n")
            self._process.stdin.flush()
        except OSError:
            pass  # it has ended: there is no answer to read
        return self._answer()

    def _answer(self):
        readable = select.select([self._process.stdout], [], [], self.SECONDS)[0]
        line = self._process.stdout.readline() if readable else ""
        if not line:
            self._errors.seek(0)
            raise Failure(f"the floor was not measured: {self._errors.read()}")
        return json.loads(line)


def put_beside(figure, floor):
    """Gives a figure that reads the floor of its request, measured just before, and the ratio of the two."""
    if floor["bytes"] != figure["bytes"]:
        raise Failure(f"{figure['title']}: the set answers {figure['bytes']} bytes, its floor was measured "
                      f"with {floor['bytes']}")
    figure["floor_ms"] = floor["sqlite_ms"] + floor["socket_ms"]
    figure["ratio"] = figure["processor_seconds_per_1000"] / figure["floor_ms"]
    figure["statement"] = floor["statement"]
    figure["rows"] = floor["rows"]
    figure["statement_ms"] = floor["sqlite_ms"]
    figure["statement_without_indexes_ms"] = floor["sqlite_without_indexes_ms"]
    figure["in_process_ms"] = floor["service_ms"]
