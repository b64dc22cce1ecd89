"""Streams of server-sent events, read as values."""

import json


class StreamFault(Exception):
    """The text is no stream of events."""


def events_of(text):
    """The events that a stream began with, as {"id", "event", "data"}, the data read as JSON. What stands
    behind the last blank line is no whole event yet."""
    for block in text.split("\n\n")[:-1]:
        fields = {}
        for line in block.split("\n"):
            name, colon, value = line.partition(":")
            if name == "" and colon:
                continue  # a comment
            if name not in ("id", "event", "data", "retry") or name in fields:
                raise StreamFault(f"the line {line!r} is no field of an event, or comes twice")
            fields[name] = value.removeprefix(" ")
        fields.pop("retry", None)
        if "data" in fields:
            yield fields | {"data": json.loads(fields["data"])}
        elif fields.keys() - {"id"}:
            raise StreamFault(f"an event without data: {block!r}")
