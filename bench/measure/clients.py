"""Clients of every kind at once, which check what they are answered."""
import collections
import http.client
import json
import random
import threading
import urllib.parse

from . import hostile

WORDS = ["news", "the", "a", "quiz", "zebra", "morning"]

# What clients may send as SQL, with the statuses that answer it.
STATEMENTS = [
    ("SELECT ChannelId, ProgramName FROM myView LIMIT 50", {200}),
    ("SELECT count(*) AS c FROM myView WHERE ProgramName LIKE '%the%'", {200}),
    ("SELECT ChannelId, max(ProgramEndTime) AS e FROM myView GROUP BY ChannelId", {200}),
    ("SELECT * FROM nothing", {204}),
    ("this is no SQL", {204}),
    ("BEGIN", {204}),
    ("ATTACH '/tmp/x' AS x", {204}),
    ("CREATE TABLE IF NOT EXISTS mine (a)", {204}),
    ("DROP TABLE IF EXISTS mine", {204}),
]

LISTS = ["channels", "channels?items_max=10&items_start_index=5", "programs", "programs?items_max=500&sort=start",
         "antennas", "recordingAvailable", "recordingSpec", "UPnP_Info"]
OWN = ["/", "/set/status", "/set/metrics", "/set/openapi.yaml"]


class Counts:
    """What all clients have seen. Used by any thread."""

    def __init__(self):
        self._lock = threading.Lock()
        self.requests = collections.Counter()
        self.errors = collections.Counter()

    def add(self, kind, error=None):
        with self._lock:
            self.requests[kind] += 1
            if error:
                self.errors[f"{kind}: {error}"] += 1

    def total(self):
        with self._lock:
            return sum(self.requests.values()), sum(self.errors.values())


class Client(threading.Thread):
    """One client, which asks until it is told to stop. `work` is called with the client again and again."""

    def __init__(self, server, counts, seed, work):
        super().__init__(daemon=True)
        self.server, self.counts, self.random, self._work = server, counts, random.Random(seed), work
        self._stop_asked = threading.Event()
        self._connection = None

    def run(self):
        while not self._stop_asked.is_set():
            self._work(self)
        self._close()

    def stop(self):
        self._stop_asked.set()

    def pause(self, seconds):
        self._stop_asked.wait(seconds)

    def _close(self):
        if self._connection:
            self._connection.close()
        self._connection = None

    def ask(self, kind, path, expected, method="GET", body=None, xml=False):
        """One request over the client's connection: status and body; 0 where there was no answer."""
        try:
            if not self._connection:
                address = self.server.url.removeprefix("http://")
                self._connection = http.client.HTTPConnection(address, timeout=60)
            self._connection.request(method, path, body, {"Accept": "application/xml"} if xml else {})
            answer = self._connection.getresponse()
            text = answer.read()
        except (OSError, http.client.HTTPException) as error:
            self._close()
            self.counts.add(kind, f"{method} {path}: {error!r}")
            return 0, b""
        fault = None if answer.status in expected else f"{method} {path} was answered {answer.status}"
        self.counts.add(kind, fault)
        return answer.status, text

    def items(self, kind, path):
        status, text = self.ask(kind, path, {200})
        return json.loads(text)["items"] if status == 200 else []

    def schedules(self):
        """The identifiers of all bookings."""
        status, text = self.ask("schedules", "/ws/epg2/schedules", {200, 204})
        return [item["id"] for item in json.loads(text)["items"]] if status == 200 and text else []


def read(client):
    """Lists, then some of what they hold; a guide that was reloaded meanwhile may not have it any more."""
    pick = client.random
    channels = client.items("list", "/ws/epg2/channels?select=id")
    if not channels:
        return
    client.ask("list", "/ws/epg2/" + pick.choice(LISTS), {200}, xml=pick.random() < 0.3)
    client.ask("schedules", "/ws/epg2/schedules", {200, 204})
    client.ask("own", pick.choice(OWN), {200})
    channel = pick.choice(channels)["id"]
    client.ask("item", f"/ws/epg2/channels/{channel}", {200, 404})
    status, text = client.ask("item", f"/ws/epg2/channels/{channel}/programs?items_max=20", {200, 204, 404})
    if status != 200:
        return
    programme = pick.choice(json.loads(text)["items"])["id"]
    for resource in ("", "/detail", "/schedule"):
        client.ask("item", f"/ws/epg2/programs/{programme}{resource}", {200, 204, 404})


def search(client):
    word = client.random.choice(WORDS)
    client.ask("search", f"/ws/epg2/programs?name={word}&items_max=100", {200, 204}, xml=client.random.random() < 0.3)
    statement, expected = client.random.choice(STATEMENTS)
    client.ask("sql", "/ws/epg2?sql=" + urllib.parse.quote(statement), expected)


def book(client):
    """Books a programme and one by hand, and cancels both; by what is listed where the guide lost the programme
    meanwhile."""
    listed = client.items("list", "/ws/epg2/programs?select=id&items_max=200&items_start_index=3000")
    if not listed:
        return
    path = f"/ws/epg2/programs/{client.random.choice(listed)['id']}/schedule"
    if client.ask("booking", path, {201, 404}, "POST", '{"status":"RECORD","force":"true"}')[0] == 201:
        client.ask("booking", path, {200, 404}, "DELETE")
    hour = client.random.randrange(10, 20)
    body = json.dumps({"channel_num": "1", "antenna": "AIR", "status": "VIEW", "repeat": "ONCE", "force": "true",
                       "start": f"2026-08-28T{hour}:00:00Z", "end": f"2026-08-28T{hour}:30:00Z"},
                      separators=(",", ":"))
    client.ask("booking", "/ws/epg2/schedules", {201}, "POST", body)
    for schedule in client.schedules():
        client.ask("booking", f"/ws/epg2/schedules/{schedule}", {200, 404}, "DELETE")


def misbehave(client):
    deed = client.random.choice(hostile.ALL)
    try:
        deed(client.server, client.random)
        client.counts.add("hostile")
    except OSError as error:
        client.counts.add("hostile", f"{deed.__name__}: {error!r}")
    # Some connections stay until the set closes them for their silence: fewer at a time than an address may have.
    client.pause(0.05)


# Each kind of client, and how many there are of it. One alone books, so that what it books is its own.
CREW = [(read, 3), (search, 2), (book, 1), (misbehave, 1)]


class Crew:
    """All clients, from entering to leaving a `with` block."""

    def __init__(self, server, counts, seed):
        works = [work for work, number in CREW for _ in range(number)]
        self._clients = [Client(server, counts, f"{seed} {place}", work) for place, work in enumerate(works)]

    def __enter__(self):
        for client in self._clients:
            client.start()
        return self

    def __exit__(self, *_):
        for client in self._clients:
            client.stop()
        for client in self._clients:
            client.join()
