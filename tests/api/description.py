"""The description of the HTTP interface, and what it says of a request."""

from urllib.parse import unquote

import yaml


class Description:
    """An OpenAPI document. Its own extensions are explained in its head."""

    def __init__(self, document):
        self.document = document
        self._templates = [(path, segments_of(path)) for path in document["paths"]]

    @classmethod
    def read(cls, path):
        with open(path, encoding="utf-8") as file:
            return cls(yaml.safe_load(file))

    def resolve(self, node):
        """What a reference within the document stands for; anything else itself."""
        while isinstance(node, dict) and "$ref" in node:
            target = self.document
            for key in node["$ref"].removeprefix("#/").split("/"):
                target = target[key.replace("~1", "/").replace("~0", "~")]
            node = target
        return node

    def path_of(self, target):
        """The described path that a request target falls on, or None."""
        segments = [unquote(segment, errors="replace") for segment in segments_of(target.split("?", 1)[0])]
        fitting = [
            (sum(part.startswith("{") for part in parts), path)
            for path, parts in self._templates
            if len(parts) == len(segments)
            and all(part == segment or part.startswith("{") for part, segment in zip(parts, segments))
        ]
        return min(fitting)[1] if fitting else None

    def responses_of(self, method, target):
        """The name of what answers a request, and the responses described for it (None: there are none)."""
        path = self.path_of(target)
        if path is None:
            prefix, responses = self._other_path(target)
            return f"any {prefix}", responses
        item = self.document["paths"][path]
        if method == method.upper() and method.lower() in item:
            return f"{method} {path}", item[method.lower()]["responses"]
        others = item.get("x-other-methods", {})
        return f"other methods {path}", others.get(method, others.get("any"))

    def operations(self):
        """The name and the responses of each operation."""
        for path, item in self.document["paths"].items():
            for method, operation in item.items():
                if isinstance(operation, dict) and "responses" in operation:
                    yield f"{method.upper()} {path}", operation["responses"]

    def _other_path(self, target):
        segments = [unquote(segment, errors="replace") for segment in segments_of(target.split("?", 1)[0])]
        others = self.document["x-other-paths"]
        fitting = [prefix for prefix in others if segments[: len(segments_of(prefix))] == segments_of(prefix)]
        prefix = max(fitting, key=len)
        return prefix, others[prefix]


def segments_of(path):
    """The segments of a path; empty ones do not count."""
    return [segment for segment in path.split("/") if segment]
