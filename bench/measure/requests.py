"""The requests that are measured."""
import dataclasses
import datetime
import json
import urllib.parse

from . import guides
from .server import Failure

BOOKING = '{"status":"RECORD"}'
SLOT = datetime.timedelta(hours=2.5)
ALL = 100_000  # a page that holds whatever is found


@dataclasses.dataclass(frozen=True)
class Request:
    name: str
    title: str
    path: str  # with the query


NAMES = ["channels", "channels-20", "programmes", "channel-programmes", "programme", "search", "window",
         "schedules", "booking"]


def iso(time):
    return time.strftime("%Y-%m-%dT%H:%M:%SZ")


def programme_of_slot(server, channels, slot):
    """A programme whose time no other slot's programme shares, more than a day ahead."""
    begin = datetime.datetime.strptime(guides.START, "%Y-%m-%dT%H:%M:%SZ") + datetime.timedelta(days=1)
    begin += slot * SLOT
    for channel in channels[slot % len(channels):] + channels[:slot % len(channels)]:
        path = (f"/ws/epg2/channels/{channel}/programs?items_max=1&start={iso(begin)}&end={iso(begin + SLOT)}"
                "&sort=start")
        status, body, _ = server.get(path)
        if status == 200:
            return json.loads(body)["items"][0]["id"]
    raise Failure(f"no channel has a programme between {iso(begin)} and {iso(begin + SLOT)}")


class Programmes:
    """Which programmes are booked before the measurement, and which in its course."""

    BOOKED = 20
    MOST_CONNECTIONS = 32

    def __init__(self, server):
        channels = [row["id"] for row in server.get_json("/ws/epg2/channels?select=id")["items"]]
        chosen = [programme_of_slot(server, channels, slot)
                  for slot in range(self.BOOKED + self.MOST_CONNECTIONS)]
        self.booked = chosen[:self.BOOKED]
        self.free = chosen[self.BOOKED:]
        self.channel = channels[len(channels) // 2]
        self.one = server.get_json(f"/ws/epg2/channels/{self.channel}/programs?items_max=1&"
                                   "items_start_index=100")["items"][0]["id"]


def book(server, programmes, count):
    for programme in programmes.booked[:count]:
        status, body, _ = server.send("POST", f"/ws/epg2/programs/{programme}/schedule", BOOKING)
        if status != 201:
            raise Failure(f"booking {programme} was answered {status}: {body.decode(errors='replace')}")
    status, body, _ = server.get("/ws/epg2/schedules")
    listed = json.loads(body)["items_total"] if status == 200 else 0
    if listed != count:
        raise Failure(f"{listed} bookings are listed in place of {count}")


def of_size(programmes, word):
    """Every request that reads."""
    window = urllib.parse.urlencode({"start": "2026-08-23T20:00:00Z", "end": "2026-08-23T22:00:00Z"})
    return [
        Request("channels", "channel list", "/ws/epg2/channels"),
        Request("channels-20", "page of 20 channels", "/ws/epg2/channels?items_max=20&items_start_index=0"),
        Request("programmes", "first page of 200 programmes", "/ws/epg2/programs"),
        Request("channel-programmes", "one channel's programmes",
                f"/ws/epg2/channels/{programmes.channel}/programs?items_max={ALL}"),
        Request("programme", "one programme", f"/ws/epg2/programs/{programmes.one}"),
        Request("search", "title search, 1 % of the titles", f"/ws/epg2/programs?name={word}&items_max={ALL}"),
        Request("window", "two hours of all channels", f"/ws/epg2/programs?{window}&items_max={ALL}"),
        Request("schedules", "schedule list", "/ws/epg2/schedules"),
    ]
