"""The floors of the figures, by bench/Floor.cpp."""
import json
import subprocess

from . import guides
from .server import Failure


def measure(program, guide, asked, booked):
    """The least that the start and each request can cost, on the same guide with the same bookings."""
    lines = [f"book {programme}" for programme in booked]
    for request in asked:
        path, _, query = request.path.removeprefix("/ws/").partition("?")
        lines.append(f"get {request.name} {path} {query}")
    done = subprocess.run([program, guide, guides.START], input="\n".join(lines) + "\n", capture_output=True,
                          text=True)
    if done.returncode != 0:
        raise Failure(f"the floor was not measured: {done.stderr}")
    return json.loads(done.stdout)


def put_beside(figures, floor):
    """Gives each figure that reads the floor of its request, and the ratio of the two."""
    for figure in figures:
        request = floor["requests"].get(figure["request"])
        if request is None:
            continue
        form = request[figure["format"]]
        if form["bytes"] != figure["bytes"]:
            raise Failure(f"{figure['title']}: the set answers {figure['bytes']} bytes, its floor was measured "
                          f"with {form['bytes']}")
        figure["floor_ms"] = request["sqlite_ms"] + form["socket_ms"]
        figure["ratio"] = figure["processor_seconds_per_1000"] / figure["floor_ms"]
        figure["in_process_ms"] = form["service_ms"]
