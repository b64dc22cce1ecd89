"""Several rounds of the same figures as one: the machine's speed swings within minutes, a round's ratios are
of figures taken within seconds, and the median of some rounds is steadier than one of them."""
import statistics

COUNTS = ["requests", "errors"]


def combined(values):
    """The median of numbers, of objects member by member; whatever else is alike in all rounds."""
    first = values[0]
    if isinstance(first, dict):
        return {key: sum(value[key] for value in values) if key in COUNTS
                else combined([value[key] for value in values]) for key in first}
    if isinstance(first, (int, float)) and any(value != first for value in values):
        return statistics.median(values)
    return first


def compare_connections(figures):
    """Gives the figures of one round at many connections what they are of the same request's at one."""
    ones = {(figure["request"], figure["format"]): figure for figure in figures if figure["connections"] == 1}
    for figure in figures:
        one = ones.get((figure["request"], figure["format"]))
        if one is None or figure is one:
            continue
        figure["rate_to_one"] = figure["requests_per_second"] / one["requests_per_second"]
        figure["p99_to_median_of_one"] = figure["p99_ms"] / one["median_ms"]
