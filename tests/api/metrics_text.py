"""Metrics in the text form that collectors read."""

import re

SAMPLE = re.compile(r"^([a-z_]+)(?:\{(.*)\})? (\S+)$")
LABEL = re.compile(r'([a-z_]+)="((?:[^"\\]|\\.)*)"(?:,|$)')


def metric_faults(text, described):
    """What is wrong with metrics, as texts. `described` holds the `type` and the `labels` of each by name."""
    faults = []
    for line in text.splitlines():
        if line.startswith("# TYPE "):
            name, kind = line.split()[2:4]
            if described.get(name, {}).get("type") != kind:
                faults.append(f"the metric {name} of type {kind} is not described")
        elif not line.startswith("#"):
            faults += _sample_faults(line, described)
    return faults


def _sample_faults(line, described):
    sample = SAMPLE.match(line)
    if not sample:
        return [f"the line {line!r} is no sample"]
    name, labels, value = sample.groups()
    try:
        float(value)
    except ValueError:
        return [f"the metric {name} has the value {value!r}"]
    names = [label for label, _ in LABEL.findall(labels or "")]
    if LABEL.sub("", labels or ""):
        return [f"the labels {labels!r} cannot be read"]
    if name not in described:
        return [f"the metric {name} is not described"]
    if sorted(names) != sorted(described[name].get("labels", [])):
        return [f"the metric {name} with the labels {names} is not described"]
    return []
