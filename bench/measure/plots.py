"""The figures as pictures (SVG), by gnuplot. As a program: plots.py RESULTS FOLDER."""
import json
import pathlib
import subprocess
import sys

HEAD = """set terminal svg size 900,{height} font "sans-serif,13" background "white"
set output "{file}"
set title "{title}"
set grid ytics lc rgb "#dddddd"
set border 3
set tics nomirror out
set key outside below
set style fill solid 0.9 noborder
"""
COLOURS = ["#4477aa", "#ee6677", "#228833", "#ccbb44", "#66ccee", "#aa3377", "#777777", "#000000"]
CONNECTIONS = 8


def draw(file, title, commands, height=480):
    script = HEAD.format(file=file, title=title, height=height) + commands
    subprocess.run(["gnuplot"], input=script, text=True, check=True)


def block(rows):
    """Rows of cells as gnuplot's $data; the first row holds the titles."""
    lines = [" ".join(f'"{cell}"' if isinstance(cell, str) else f"{cell:.6g}" for cell in row) for row in rows]
    return "$data << END\n" + "\n".join(lines) + "\nEND\n"


def histogram(rows, style, label, extra=""):
    series = ", ".join(f"$data using {column}:xtic(1) title columnheader({column}) lc rgb \"{COLOURS[column - 2]}\""
                       for column in range(2, len(rows[0]) + 1))
    return (block(rows) + f'set style data histograms\nset style histogram {style}\nset ylabel "{label}"\n'
            f"set xtics rotate by -25\nset boxwidth 0.85\n{extra}plot {series}\n")


def loaded(results):
    """The runs with the most bookings: the cold ones, by size."""
    most = max(run["bookings"] for run in results["runs"])
    return [run for run in results["runs"] if run["bookings"] == most and run["answer_cache"] != "warm"]


def read_figures(run, connections=CONNECTIONS):
    return [figure for figure in run["figures"] if figure["format"] == "json"
            and figure["connections"] == connections and "floor_ms" in figure]


def shares(figure, floor):
    """Where a request's processor time goes, in milliseconds, from the first thing done to the last."""
    statement = figure["statement_ms"]
    preparation = floor["update_check_ms"] + floor["mirror_ms"]
    service = max(0.0, figure["in_process_ms"] - preparation - statement)
    server = max(0.0, figure["processor_seconds_per_1000"] - figure["in_process_ms"])
    return [floor["update_check_ms"], floor["mirror_ms"], statement, service, server]


def plot_latency(runs, folder):
    rows = [["request", *(f"{run['programmes']:,} programmes" for run in runs)]]
    by_run = [{figure["title"]: figure["median_ms"] for figure in read_figures(run)} for run in runs]
    for title in by_run[0]:
        rows.append([title, *(figures[title] for figures in by_run)])
    draw(folder / "latency.svg", f"Median latency at {CONNECTIONS} connections",
         histogram(rows, "clustered gap 1", "ms", "set logscale y\n"))


def plot_growth(runs, folder):
    by_run = [{figure["title"]: figure for figure in read_figures(run)} for run in runs]
    titles = list(by_run[0])
    rows = [["programmes", *titles, *titles]]
    for run, figures in zip(runs, by_run):
        rows.append([run["programmes"], *(figures[title]["processor_seconds_per_1000"] for title in titles),
                     *(figures[title]["floor_ms"] for title in titles)])
    count = len(titles)
    lines = [f"$data using 1:{2 + i} with linespoints pt 7 lw 2 lc rgb \"{COLOURS[i]}\" title columnheader({2 + i})"
             for i in range(count)]
    lines += [f"$data using 1:{2 + count + i} with lines dt 2 lc rgb \"{COLOURS[i]}\" notitle"
              for i in range(count)]
    draw(folder / "growth.svg", "Processor time a request; its floor dashed",
         block(rows) + 'set logscale xy\nset xlabel "programmes in the guide"\nset ylabel "ms"\n'
         f"set xtics ({', '.join(str(run['programmes']) for run in runs)})\nplot {', '.join(lines)}\n", 620)


def plot_memory(runs, folder):
    rows = [["size", "SQLite's pages", "all else after the start", "added by the load"]]
    for run in runs:
        start, pages = run["start"]["resident_bytes"], run["floor"]["database_bytes"]
        rows.append([f"{run['programmes']:,} programmes", pages / 1e6, (start - pages) / 1e6,
                     max(0, run["resident_bytes_after_load"] - start) / 1e6])
    draw(folder / "memory.svg", "Resident memory", histogram(rows, "rowstacked", "MB", "set yrange [0:*]\n"))


def plot_shares(run, folder):
    rows = [["request", "update check", "mirror of the bookings", "the statement, bare", "rows and printing",
             "HTTP and kernel"]]
    for figure in read_figures(run):
        parts = shares(figure, run["floor"])
        rows.append([figure["title"], *(100 * part / sum(parts) for part in parts)])
    draw(folder / "shares.svg", f"Where the processor time goes: {run['programmes']:,} programmes, "
         f"{run['bookings']} bookings", histogram(rows, "rowstacked", "%", "set yrange [0:100]\n"))


def plot(results, folder):
    """Draws what the results hold; nothing where none of them has the connections that are drawn."""
    runs = loaded(results)
    if not all(read_figures(run) for run in runs):
        return []
    folder.mkdir(parents=True, exist_ok=True)
    plot_latency(runs, folder)
    plot_memory(runs, folder)
    plot_shares(runs[-1], folder)
    if len(runs) > 1:
        plot_growth(runs, folder)
    return sorted(folder.glob("*.svg"))


if __name__ == "__main__":
    plot(json.loads(pathlib.Path(sys.argv[1]).read_text(encoding="utf-8")), pathlib.Path(sys.argv[2]))
