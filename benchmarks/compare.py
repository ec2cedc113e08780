#!/usr/bin/env python3
"""Prints the results of Google Benchmark as a table of smallest times and ratios.

Results of the same program are combined. A benchmark is named "group/side" or "group/side/size". The
sides of a group that have the same size are compared with the side "ovapp", each by the smallest time
of its repetitions, which other work on the machine affects least. The target ratio of a side
is in the context of the run, as "target group/side/size": "ovapp/it <= 1.5" or "it/ovapp >= 6".

The exit code is 1 if a benchmark has failed or the results are inconsistent. A target that is not met is
only reported: times depend on the machine.
"""

import argparse
import json
import re
import statistics
import sys

OURS = "ovapp"
TARGET_PREFIX = "target "
TARGET = re.compile(r"(ovapp/it|it/ovapp) (<=|>=) ([0-9.]+)")
NANOSECONDS = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}
# Google Benchmark appends to a name how the benchmark was run.
SUFFIX = re.compile(r"/(real_time|manual_time|process_time|(min_time|iterations|repeats):[^/]*)")


class Failure(Exception):
    pass


def read_times(result):
    """Returns the times of all repetitions in nanoseconds, by name, in order of declaration."""
    runs = {}
    for run in result["benchmarks"]:
        if run.get("error_occurred"):
            raise Failure(f'{run["name"]}: {run["error_message"]}')
        if run["run_type"] == "iteration":
            runs.setdefault((run["family_index"], run["run_name"]), []).append(run)

    times = {}
    for (_, run_name), repetitions in sorted(runs.items()):
        # Processor time, unless the name says that it is real time.
        real = "/real_time" in run_name or "/manual_time" in run_name
        times[SUFFIX.sub("", run_name)] = [
            run["real_time" if real else "cpu_time"] * NANOSECONDS[run["time_unit"]]
            for run in repetitions
        ]
    return times


def read_targets(result):
    """Returns the target ratios by the name of the benchmark."""
    targets = {}
    for key, text in result["context"].items():
        if key.startswith(TARGET_PREFIX):
            match = TARGET.fullmatch(text)
            if not match:
                raise Failure(f"{key}: not a target: {text!r}")
            targets[key[len(TARGET_PREFIX) :]] = match.groups()
    return targets


def split(name):
    """Returns group, side and size (or None) of a benchmark."""
    parts = name.split("/")
    if len(parts) not in (2, 3):
        raise Failure(f"{name}: not named group/side or group/side/size")
    return (*parts, None)[:3]


def format_time(nanoseconds):
    for unit in ("s", "ms", "us"):
        # With three digits, 999.6 of one unit would be printed as 1e+03.
        if nanoseconds >= 0.9995 * NANOSECONDS[unit]:
            return f"{nanoseconds / NANOSECONDS[unit]:.3g} {unit}"
    return f"{nanoseconds:.3g} ns"


def format_spread(times):
    """Returns by how much the median exceeds the smallest time."""
    return f"+{100 * (statistics.median(times) / min(times) - 1):.0f} %"


def verdict(target, ours, other):
    ratio, relation, bound = target
    value = ours / other if ratio == "ovapp/it" else other / ours
    met = value <= float(bound) if relation == "<=" else value >= float(bound)
    return f'{ratio} {relation} {bound}: {"met" if met else "not met"}'


def rows_of(result):
    """Returns the rows of each group by its title, the smallest times by (group, side, size), and the
    names of targets for benchmarks that were not run.
    """
    times = read_times(result)
    targets = read_targets(result)
    smallest = {split(name): min(values) for name, values in times.items()}

    tables = {}
    for name, values in times.items():
        group, side, size = split(name)
        time = smallest[group, side, size]
        row = [side, format_time(time), format_spread(values), "", "", ""]
        if side != OURS:
            ours = smallest.get((group, OURS, size))
            if ours is None:
                raise Failure(f"{name}: there is no {OURS} to compare it with")
            row[3:5] = f"{ours / time:.2f}", f"{time / ours:.2f}"
            if name in targets:
                row[5] = verdict(targets.pop(name), ours, time)
        tables.setdefault(group if size is None else f"{group}, {size}", []).append(row)
    return tables, smallest, list(targets)


def print_tables(tables):
    """Prints one table with the title of each group above its rows."""
    head = ["", "smallest", "median", "ovapp/it", "it/ovapp", "target"]
    rows = [head]
    for title, sides in tables.items():
        rows += [[""] * len(head), [title, "", "", "", "", ""]]
        rows += [["  " + side, *others] for side, *others in sides]
    # A title may be wider than the first column, since the rest of its row is empty.
    widths = [max(len(row[i]) for row in rows if i or row[1]) for i in range(len(head))]
    for first, *numbers, last in rows:
        cells = [first.ljust(widths[0])]
        cells += [cell.rjust(width) for cell, width in zip(numbers, widths[1:])]
        print("  ".join([*cells, last]).rstrip())


def chart(smallest):
    """Returns an SVG with a bar for the time of each side relative to that of a bare loop."""
    group, base, sizes = "Notification of a plug-in", "bare loop", ("1", "10", "1000")
    sides = list(dict.fromkeys(side for title, side, _ in smallest if title == group))
    ratios = {}
    for size in sizes:
        for side in sides:
            if (group, side, size) not in smallest:
                raise Failure(f"{group}/{side}/{size}: not measured, so there is no chart")
            ratios[side, size] = smallest[group, side, size] / smallest[group, base, size]

    left, row, heading = 150, 22, 40
    scale = 480 / max(ratios.values())
    y = 24
    shapes = [f'<text x="{left}" y="{y}">Time relative to a bare loop; shorter is better</text>']
    for size in sizes:
        y += heading
        title = f"{int(size):,} listener" + ("" if size == "1" else "s")
        shapes.append(f'<text x="{left}" y="{y - 8}" font-weight="bold">{title}</text>')
        for side in sides:
            width = ratios[side, size] * scale
            color = "#1f6fb2" if side == OURS else "#b8c4ce"
            shapes += [
                f'<text x="{left - 8}" y="{y + 15}" text-anchor="end">{side}</text>',
                f'<rect x="{left}" y="{y + 2}" width="{width:.1f}" height="{row - 4}" fill="{color}"/>',
                f'<text x="{left + width + 6:.1f}" y="{y + 15}">{ratios[side, size]:.2f}</text>',
            ]
            y += row
    return "\n".join([
        f'<svg xmlns="http://www.w3.org/2000/svg" width="720" height="{y + 20}" '
        f'viewBox="0 0 720 {y + 20}" font-family="sans-serif" font-size="14">',
        "<title>Time of a notification relative to a bare loop</title>",
        '<rect width="100%" height="100%" fill="white"/>',
        *shapes,
        "</svg>\n",
    ])


def main(arguments):
    parser = argparse.ArgumentParser(
        description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter
    )
    parser.add_argument(
        "--chart", metavar="FILE.svg", help="draw notification times relative to a bare loop"
    )
    parser.add_argument("results", metavar="RESULT.json", nargs="+")
    options = parser.parse_args(arguments)
    failed = False
    programs = {}
    for path in options.results:
        try:
            with open(path, encoding="utf-8") as file:
                result = json.load(file)
            program = programs.setdefault(result["context"]["executable"], result)
            if program is not result:
                program["benchmarks"] += result["benchmarks"]
        except (OSError, ValueError, KeyError) as error:
            print(f"compare.py: {path}: {error!r}", file=sys.stderr)
            failed = True
    all_tables = {}
    all_smallest = {}
    for program, result in programs.items():
        try:
            tables, smallest, unmeasured = rows_of(result)
        except Failure as error:
            print(f"compare.py: {program}: {error}", file=sys.stderr)
            failed = True
            continue
        all_tables.update(tables)
        all_smallest.update(smallest)
        for name in unmeasured:
            print(f"compare.py: {program}: {name}: has a target, but was not run", file=sys.stderr)
            failed = True
    print_tables(all_tables)
    if options.chart:
        try:
            svg = chart(all_smallest)
            with open(options.chart, "w", encoding="utf-8") as file:
                file.write(svg)
        except (Failure, OSError) as error:
            print(f"compare.py: {options.chart}: {error}", file=sys.stderr)
            failed = True
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
