"""Checks answers against the description of the interface."""

import hashlib
import json

import jsonschema

from event_stream import StreamFault, events_of
from metrics_text import metric_faults
from xml_form import XmlFault, value_of_xml

# What the web server adds to any answer.
TRANSPORT_HEADERS = {"connection", "content-length", "content-type", "date", "transfer-encoding"}


class AnswerCheck:
    """Checks one exchange after the other and remembers what it has seen: `seen` holds the name of what
    answered, the status and the content type of each."""

    def __init__(self, description):
        self.description = description
        self.seen = set()
        self._validators = {}
        self._bodies = {}

    def faults(self, exchange):
        """What is wrong with an answer, as texts; none when it is as described. An exchange has `method`,
        `target`, `status`, `headers` (names in lower case) and `body`."""
        name, responses = self.description.responses_of(exchange["method"], exchange["target"])
        if responses is None:
            return [f"{name}: the method {exchange['method']} is not described"]
        status = str(exchange["status"])
        if status not in responses:
            name, responses = "anything", self.description.document.get("x-everywhere", {})
        if status not in responses:
            return [f"{name}: the status {status} is not described"]
        response = self.description.resolve(responses[status])
        content_type = exchange["headers"].get("content-type", "") if exchange["body"] else ""
        self.seen.add((name, status, content_type))
        faults = self._header_faults(exchange["headers"], response) + self._body_faults(exchange, response)
        return [f"{name}: {status}: {fault}" for fault in faults]

    def unseen(self):
        """The answers of operations that are described and have not been seen: the name of the operation,
        the status and the content type. A failure of the set (500) is not expected of it."""
        statuses_seen = {(name, status) for name, status, _ in self.seen}
        for name, responses in self.description.operations():
            for status, response in responses.items():
                if status == "500":
                    continue
                response = self.description.resolve(response)
                if response.get("x-body-optional") or "content" not in response:
                    if (name, status) not in statuses_seen:
                        yield name, status, ""
                    continue
                for content_type in response["content"]:
                    if (name, status, content_type) not in self.seen:
                        yield name, status, content_type

    def value_faults(self, value, schema):
        """What is wrong with a value of a schema of the description, as texts."""
        error = jsonschema.exceptions.best_match(self._validator(schema).iter_errors(value))
        return [] if error is None else [f"{error.json_path}: {error.message[:300]}"]

    def _header_faults(self, headers, response):
        faults = []
        everywhere = self.description.document.get("x-everywhere-headers", {})
        described = {key.lower(): node for key, node in (everywhere | response.get("headers", {})).items()}
        for key, node in described.items():
            node = self.description.resolve(node)
            if key in headers:
                faults += [f"header {key}: {fault}" for fault in self.value_faults(headers[key], node["schema"])]
            elif node.get("required"):
                faults.append(f"the header {key} is missing")
        for key in headers.keys() - described.keys() - TRANSPORT_HEADERS:
            faults.append(f"the header {key} is not described")
        return faults

    def _body_faults(self, exchange, response):
        body = exchange["body"]
        content = response.get("content", {})
        if not body:
            optional = not content or response.get("x-body-optional") or exchange["method"] == "HEAD"
            return [] if optional else ["the body is missing"]
        content_type = exchange["headers"].get("content-type", "")
        if content_type not in content:
            return [f"a body of the content type {content_type!r} is not described"]
        media = content[content_type]
        # Most answers come many times.
        key = (id(media), content_type, hashlib.sha256(body.encode("utf-8", "surrogatepass")).digest())
        if key not in self._bodies:
            self._bodies[key] = self._content_faults(body, content_type, media)
        return self._bodies[key]

    def _content_faults(self, body, content_type, media):
        schema = media["schema"]
        try:
            if content_type.startswith("application/json"):
                value = json.loads(body, object_pairs_hook=_object_of_distinct)
            elif content_type.startswith("application/xml"):
                value = value_of_xml(body, schema, self.description.resolve, self._is_valid)
            elif content_type == "text/event-stream":
                items = (self.value_faults(event, media["x-item-schema"]) for event in events_of(body))
                return [fault for faults in items for fault in faults]
            elif "x-metrics" in media:
                return metric_faults(body, media["x-metrics"])
            else:
                value = body
        except (ValueError, StreamFault, XmlFault) as fault:
            return [f"the body cannot be read: {fault}"]
        return self.value_faults(value, schema)

    def _is_valid(self, value, schema):
        return self._validator(schema).is_valid(value)

    def _validator(self, schema):
        if id(schema) not in self._validators:
            whole = {"components": self.description.document["components"], "allOf": [schema]}
            self._validators[id(schema)] = jsonschema.Draft202012Validator(whole)
        return self._validators[id(schema)]


def _object_of_distinct(pairs):
    members = dict(pairs)
    if len(members) != len(pairs):
        raise ValueError("a member comes twice")
    return members
