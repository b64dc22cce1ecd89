"""The commands in pages of documentation, and the answers shown to them."""

import dataclasses
import json
import re

FENCE = re.compile(r"^```(\w*)\s*$")
NOT_RUN = re.compile(r"^<!-- not run: (.+) -->$")
ANSWER_KINDS = ("json", "text", "xml")


class PageFault(Exception):
    """A page is not written as the convention has it."""


@dataclasses.dataclass
class Block:
    """A block of commands: the line that it begins at, why it is not run (None: it is run), and the kind and
    the text of the answer shown right after it (None: there is none)."""

    line: int
    commands: str
    not_run: str | None = None
    answer_kind: str | None = None
    answer: str | None = None


def blocks_of(page):
    """The blocks of commands of a page, which stand between "```sh" and "```"; an answer follows as the next
    block."""
    blocks = []
    lines = page.splitlines()
    at = 0
    since_commands = None  # what stands between the last block of commands and here
    while at < len(lines):
        fence = FENCE.match(lines[at])
        if not fence:
            if since_commands is not None:
                since_commands.append(lines[at])
            at += 1
            continue
        kind, begin = fence.group(1), at + 1
        at = begin
        while at < len(lines) and lines[at] != "```":
            at += 1
        if at == len(lines):
            raise PageFault(f"line {begin}: the block does not end")
        text = "\n".join(lines[begin:at]) + "\n"
        before = NOT_RUN.match(lines[begin - 2]) if begin > 1 else None
        if kind == "sh":
            blocks.append(Block(begin, text, before.group(1) if before else None))
            since_commands = []
        elif kind in ANSWER_KINDS and since_commands is not None and not "".join(since_commands).strip():
            blocks[-1].answer_kind, blocks[-1].answer = kind, text
            since_commands = None
        else:
            since_commands = None
        at += 1
    return blocks


def fits(kind, shown, answered):
    """Whether an answer is the one that the page shows, in which "..." stands for anything."""
    if kind == "json":
        try:
            values = json_values(answered)
        except ValueError:
            return False
        return json_fits(json_values(shown), values)
    pattern = ".*".join(re.escape(part) for part in shown.strip().split("..."))
    return re.fullmatch(pattern, answered.strip(), re.DOTALL) is not None


def json_values(text):
    """The JSON values that stand one after the other in a text."""
    values, decoder, text = [], json.JSONDecoder(), text.strip()
    while text:
        value, end = decoder.raw_decode(text)
        values.append(value)
        text = text[end:].lstrip()
    return values


def json_fits(shown, answered):
    """Whether a value is the one shown, in which the text "..." stands for any value."""
    if shown == "...":
        return True
    if isinstance(shown, dict) and isinstance(answered, dict):
        return list(shown) == list(answered) and all(json_fits(shown[key], answered[key]) for key in shown)
    if isinstance(shown, list) and isinstance(answered, list):
        return len(shown) == len(answered) and all(map(json_fits, shown, answered))
    return type(shown) is type(answered) and shown == answered
