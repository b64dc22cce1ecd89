"""Load by wrk, and what it costs the server."""
import json
import pathlib
import subprocess
import tempfile

from .server import Failure

SCRIPTS = pathlib.Path(__file__).parent


def run_wrk(url, connections, seconds, script, threads, accept=None, arguments=()):
    command = ["wrk", f"--connections={connections}", f"--threads={threads}", f"--duration={seconds}s",
               "--timeout=60s", f"--script={SCRIPTS / script}"]
    if accept:
        command.append(f"--header=Accept: {accept}")
    done = subprocess.run([*command, url, *(["--", *arguments] if arguments else [])], capture_output=True,
                          text=True)
    for line in done.stdout.splitlines():
        if line.startswith("RESULT "):
            return json.loads(line.removeprefix("RESULT "))
    raise Failure(f"wrk failed on {url}: {done.stdout}{done.stderr}")


def figure(server, work):
    """Runs `work` and answers its result along with the processor time of each request."""
    server.settle()
    answered, used = server.answered(), server.processor_seconds()
    result = work()
    server.settle()
    used = server.processor_seconds() - used
    answered = server.answered() - answered  # with those that nobody waited for when the time was over
    wall = result["duration_us"] / 1e6
    return {
        "requests": result["requests"],
        "requests_per_second": result["requests"] / wall,
        "median_ms": result["median_us"] / 1e3,
        "p99_ms": result["p99_us"] / 1e3,
        "processor_seconds_per_1000": used / answered * 1000,
        "megabytes_per_second": result["bytes"] / wall / 1e6,
        "errors": result["errors"],
    } | {key: result[key] for key in ("book_median_ms", "cancel_median_ms") if key in result}


def read(server, path, connections, seconds, accept=None):
    """GETs of one path."""
    return figure(server, lambda: run_wrk(server.url + path, connections, seconds, "read.lua", 1, accept))


def book_and_cancel(server, programmes, connections, seconds):
    """Each connection books a programme of its own and cancels it again, over and over. Half of the requests
    are bookings; the medians of both are told apart as well."""
    with tempfile.NamedTemporaryFile("w", suffix=".txt") as listed:
        listed.write("\n".join(programmes[:connections]) + "\n")
        listed.flush()
        result = figure(server, lambda: run_wrk(server.url, connections, seconds, "book.lua", connections,
                                                arguments=[listed.name]))
    for programme in programmes[:connections]:  # the time may have been over between the two
        server.send("DELETE", f"/ws/epg2/programs/{programme}/schedule")
    return result
