"""The figures as text."""

COLUMNS = [("request", 31), ("form", 5), ("conn", 5), ("req/s", 9), ("median ms", 10), ("p99 ms", 9),
           ("cpu s/1000", 11), ("floor", 9), ("ratio", 7), ("bytes", 10), ("errors", 7)]


def row(cells):
    return "".join(str(cell).ljust(width) if index == 0 else str(cell).rjust(width)
                   for index, (cell, (_, width)) in enumerate(zip(cells, COLUMNS))).rstrip()


def number(value, digits=3):
    return "" if value is None else f"{value:.{digits}f}"


def start_lines(run):
    start = run["start"]
    lines = [
        f"{run['programmes']:,} programmes, {run['channels']} channels, {run['bookings']} bookings"
        + (", kept answers" if run["answer_cache"] == "warm" else ""),
        f"  ready after {start['ready_seconds']:.2f} s, {start['processor_seconds']:.2f} s of processor time; "
        f"resident {start['resident_bytes'] / 1e6:.1f} MB, after the load {run['resident_bytes_after_load'] / 1e6:.1f} MB",
    ]
    floor = run.get("floor")
    if floor:
        beyond = start["resident_bytes"] - floor["database_bytes"]
        start_ratio = start["processor_seconds"] * 1e3 / floor["start_ms"]
        lines += [
            f"  SQLite's pages {floor['database_bytes'] / 1e6:.1f} MB, beyond them "
            f"{beyond / run['programmes']:.0f} bytes a programme",
            f"  floor of the start {floor['start_ms'] / 1e3:.2f} s "
            f"(reading the guide {floor['read_ms'] / 1e3:.2f} s, and twice its INSERTs, "
            f"{floor['insert_ms'] / 1e3:.2f} s each): ratio {start_ratio:.2f}",
            f"  update check {floor['update_check_ms']:.4f} ms, mirror of the bookings "
            f"{floor['mirror_ms']:.4f} ms, {floor['mirror_written_ms']:.4f} ms when it is written",
        ]
    return lines


def figure_row(figure):
    return row([figure["title"], figure["format"], figure["connections"],
                number(figure["requests_per_second"], 0), number(figure["median_ms"]),
                number(figure["p99_ms"]), number(figure["processor_seconds_per_1000"], 4),
                number(figure.get("floor_ms"), 4), number(figure.get("ratio"), 2),
                figure["bytes"] or "", figure["errors"] or ""])


def text(results):
    lines = [
        "cpu s/1000: processor seconds of the server for a thousand requests, that is milliseconds a request.",
        "floor: milliseconds of processor time of bare SQLite stepping the same statement on the same rows and",
        "indexes, and of writing the same bytes to a loopback socket. For the search: LIKE '%word%'.",
        f"Each figure and each ratio is the median of {results['rounds']} rounds.",
    ]
    for run in results["runs"]:
        lines += ["", *start_lines(run), row([name for name, _ in COLUMNS])]
        lines += [figure_row(figure) for figure in run["figures"]]
    return "\n".join(lines)
