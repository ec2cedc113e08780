#!/usr/bin/env python3
"""Prints what Google Benchmark measured as a table of smallest times and ratios.

Usage: compare.py RESULT.json...

Results of the same program are taken together. A benchmark is named "group/side" or "group/side/size". The sides of a group that have the same
size are compared with the side "ovapp", each by the smallest time of its repetitions: that is the
one that other work on the machine moves least. A ratio that is wanted of a side stands in the
context of the run, as "target group/side/size": "ovapp/it <= 1.5" or "it/ovapp >= 6".

The exit status is 1 when a benchmark has failed or the results do not fit together. A wanted ratio
that is not met is reported, no more: timings depend on the machine.
"""

import json
import re
import statistics
import sys

OURS = "ovapp"
WANTED_PREFIX = "target "
WANTED = re.compile(r"(ovapp/it|it/ovapp) (<=|>=) ([0-9.]+)")
NANOSECONDS = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}
# What Google Benchmark appends to a name: how the benchmark was run, not what it measures.
SUFFIX = re.compile(r"/(real_time|manual_time|process_time|(min_time|iterations|repeats):[^/]*)")


class Failure(Exception):
    pass


def read_times(result):
    """The times of every repetition in nanoseconds, by name and in the order they were declared."""
    runs = {}
    for run in result["benchmarks"]:
        if run.get("error_occurred"):
            raise Failure(f'{run["name"]}: {run["error_message"]}')
        if run["run_type"] == "iteration":
            runs.setdefault((run["family_index"], run["run_name"]), []).append(run)

    times = {}
    for (_, run_name), repetitions in sorted(runs.items()):
        # The time that a benchmark is declared to be about: the processor's, unless it says so.
        real = "/real_time" in run_name or "/manual_time" in run_name
        times[SUFFIX.sub("", run_name)] = [
            run["real_time" if real else "cpu_time"] * NANOSECONDS[run["time_unit"]]
            for run in repetitions
        ]
    return times


def read_wanted(result):
    """The ratios wanted, by the name of the benchmark."""
    wanted = {}
    for key, text in result["context"].items():
        if key.startswith(WANTED_PREFIX):
            match = WANTED.fullmatch(text)
            if not match:
                raise Failure(f"{key}: cannot understand {text!r}")
            wanted[key[len(WANTED_PREFIX) :]] = match.groups()
    return wanted


def split(name):
    """Group, side and size (or None) of a benchmark."""
    parts = name.split("/")
    if len(parts) not in (2, 3):
        raise Failure(f"{name}: not named group/side or group/side/size")
    return (*parts, None)[:3]


def format_time(nanoseconds):
    for unit in ("s", "ms", "us"):
        # Three digits of 999.6 in one unit are those of 1 in the next.
        if nanoseconds >= 0.9995 * NANOSECONDS[unit]:
            return f"{nanoseconds / NANOSECONDS[unit]:.3g} {unit}"
    return f"{nanoseconds:.3g} ns"


def format_spread(times):
    """How far the median lies above the smallest."""
    return f"+{100 * (statistics.median(times) / min(times) - 1):.0f} %"


def verdict(wanted, ours, other):
    ratio, relation, bound = wanted
    value = ours / other if ratio == "ovapp/it" else other / ours
    met = value <= float(bound) if relation == "<=" else value >= float(bound)
    return f'{ratio} {relation} {bound}: {"met" if met else "not met"}'


def rows_of(result):
    """The groups of one result, a title each and its rows; and the names in which a ratio is
    wanted of something that was not measured.
    """
    times = read_times(result)
    wanted = read_wanted(result)
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
            if name in wanted:
                row[5] = verdict(wanted.pop(name), ours, time)
        tables.setdefault(group if size is None else f"{group}, {size}", []).append(row)
    return tables, list(wanted)


def print_tables(tables):
    """All in one, a heading with the groups' names between their rows."""
    head = ["", "smallest", "median", "ovapp/it", "it/ovapp", "wanted"]
    rows = [head]
    for title, sides in tables.items():
        rows += [[""] * len(head), [title, "", "", "", "", ""]]
        rows += [["  " + side, *others] for side, *others in sides]
    # A title may be longer than the names below it: nothing stands beside it.
    widths = [max(len(row[i]) for row in rows if i or row[1]) for i in range(len(head))]
    for first, *numbers, last in rows:
        cells = [first.ljust(widths[0])]
        cells += [cell.rjust(width) for cell, width in zip(numbers, widths[1:])]
        print("  ".join([*cells, last]).rstrip())


def main(paths):
    if not paths:
        print(__doc__.strip().splitlines()[2], file=sys.stderr)
        return 2
    failed = False
    programs = {}
    for path in paths:
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
    for program, result in programs.items():
        try:
            tables, unmeasured = rows_of(result)
        except Failure as error:
            print(f"compare.py: {program}: {error}", file=sys.stderr)
            failed = True
            continue
        all_tables.update(tables)
        for name in unmeasured:
            print(f"compare.py: {program}: {name}: wanted, but not measured", file=sys.stderr)
            failed = True
    print_tables(all_tables)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
