#!/usr/bin/env python3
"""Lists tonight's films and books one.

The service does not tell films from other programmes: a film is taken to be what starts between 18:00 and
midnight and is long.

Exit status: 0 done, 1 not booked, 2 the set cannot be asked.
"""

import argparse
import json
import sys
import urllib.error
import urllib.parse
import urllib.request
from datetime import datetime, timedelta, timezone

PAGE = 200


class Set:
    """A set's service over HTTP."""

    def __init__(self, base):
        self._base = base.rstrip("/")

    def ask(self, method, path, body=None, **query):
        """The status of the answer, and its document; None where it has none."""
        url = self._base + path + ("?" + urllib.parse.urlencode(query) if query else "")
        # Without blanks around the colons, as the service reads it.
        data = json.dumps(body, separators=(",", ":")).encode() if body else None
        request = urllib.request.Request(url, data=data, method=method, headers={"Accept": "application/json"})
        try:
            with urllib.request.urlopen(request, timeout=30) as answer:
                text = answer.read()
                return answer.status, json.loads(text) if text else None
        except urllib.error.HTTPError as error:
            return error.code, None

    def clock(self):
        """What time it is on the set; on this machine where the set does not say."""
        status, document = self.ask("GET", "/set/status")
        return datetime.fromisoformat(document["clock"]) if status == 200 else datetime.now(timezone.utc)

    def programmes(self, start, end):
        """All television programmes that start and end in between, page by page."""
        index, total = 0, 1
        while index < total:
            status, document = self.ask(
                "GET",
                "/ws/epg2/programs",
                start=start.isoformat(timespec="seconds"),
                end=end.isoformat(timespec="seconds"),
                service_type="TV",
                sort="start",
                sort_order="ascend",
                items_max=PAGE,
                items_start_index=index,
            )
            if status == 204:
                return
            if status != 200:
                raise RuntimeError(f"the list of programmes was answered {status}")
            total = document["items_total"]
            index += PAGE
            yield from document["items"]

    def book(self, programme, status, force):
        return self.ask(
            "POST", f"/ws/epg2/programs/{programme['id']}/schedule", {"status": status, "force": force}
        )


def films_tonight(tv, minutes):
    clock = tv.clock()
    midnight = clock.replace(hour=0, minute=0, second=0, microsecond=0) + timedelta(days=1)
    evening = max(clock, midnight - timedelta(hours=6))
    for programme in tv.programmes(evening, midnight + timedelta(hours=6)):
        start = datetime.fromisoformat(programme["start"])
        end = datetime.fromisoformat(programme["end"])
        if start < midnight and end - start >= timedelta(minutes=minutes):
            yield programme


def line(programme, title):
    return f"{programme['start'][11:16]}-{programme['end'][11:16]}  {title} ({programme['channel_name']})"


def choice(text, films):
    """The film of this number in the list, or None."""
    return films[int(text) - 1] if text.isdecimal() and 1 <= int(text) <= len(films) else None


def booked(tv, film, status, replace):
    """Books a film and says what came of it; whether it is booked."""
    answer, _ = tv.book(film, status, "true" if replace else "false")
    if answer == 201:
        print(f"Booked: {line(film, film['name'])}")
        return True
    if answer == 200:
        print(f"It is on now: the set shows {film['name']}." if status == "VIEW" else "The set did not book it.")
        return status == "VIEW"
    if answer == 409:
        _, document = tv.book(film, status, "check_overlap")
        print("Not booked. In the way:")
        for entry in document["items"]:
            print(f"  {line(entry, entry['name'] or 'booked by hand')}")
        print("With --replace it is booked in its place.")
    elif answer == 403:
        print("Not booked: the set cannot record now.")
    elif answer == 404:
        print("Not booked: the programme is over, or on now, which cannot be recorded.")
    else:
        print(f"Not booked: the set answered {answer}.")
    return False


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--base", default="http://127.0.0.1:8080", help="the set's URL (default: %(default)s)")
    parser.add_argument("--book", metavar="N", help="book this one of the list and do not ask")
    parser.add_argument("--status", choices=["VIEW", "RECORD"], default="VIEW", help="remind of it, or record it")
    parser.add_argument("--replace", action="store_true", help="replace what is booked at that time")
    parser.add_argument("--minutes", type=int, default=80, help="how long a film is at least (default: 80)")
    options = parser.parse_args()

    tv = Set(options.base)
    try:
        films = sorted(films_tonight(tv, options.minutes), key=lambda film: (film["start"], film["id"]))
        if not films:
            print("No film tonight.")
            return 1
        for number, film in enumerate(films, 1):
            print(f"{number:3}  {line(film, film['name'])}")
        text = options.book if options.book is not None else input("Which one to book (none: just Enter)? ").strip()
        if not text:
            return 0
        film = choice(text, films)
        if film is None:
            print(f"There is no number {text} in the list.")
            return 1
        return 0 if booked(tv, film, options.status, options.replace) else 1
    except (OSError, RuntimeError, ValueError) as error:
        print(f"{options.base}: {error}", file=sys.stderr)
        return 2


if __name__ == "__main__":
    sys.exit(main())
