"""bench.py [FILTER]: runs the benchmarks whose name matches FILTER (a regular expression), ours beside their
peers, then whole programs that shrink pictures (those named batch and thumbnails). Prints medians and ratios.

Keeps what was measured in build/bench/results.csv, for bench-compare; without a filter, puts the table
into docs/performance.md as well. Fails when a program does, or when one has a benchmark of that name and
prints no row."""

import datetime
import os
import re
import statistics
import subprocess
import sys

import benchResults as results

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
TREE = os.path.join(ROOT, "build/bench")
PAGE = os.path.join(ROOT, "docs/performance.md")
REPETITIONS = 9


def output_of(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True,
                          check=True).stdout


def programs():
    for folder, folders, files in os.walk(os.path.join(TREE, "bench")):
        folders[:] = sorted(name for name in folders if name != "CMakeFiles")
        for name in sorted(files):
            path = os.path.join(folder, name)
            if os.access(path, os.X_OK) and not name.endswith(".so"):
                yield path


def has_table_of_its_own(program):
    return "benchmark::RunSpecifiedBenchmarks" not in output_of("nm", "-DC", program)


def rows_of(program, wanted):
    """The rows of a program; none when the filter leaves all of its benchmarks out."""
    names = output_of(program, "--benchmark_list_tests", "--benchmark_filter=" + wanted).strip()
    if not names:
        return {}
    # Interleaved, so that a noisy moment of the machine falls on ours and on the peer alike.
    lines = output_of(program, "--benchmark_filter=" + wanted, f"--benchmark_repetitions={REPETITIONS}",
                      "--benchmark_enable_random_interleaving=true", "--benchmark_min_time=0.1",
                      "--benchmark_format=csv").splitlines()
    rows = results.from_google_benchmark(lines)
    if not rows:
        raise RuntimeError("no row")
    return rows


def lines_of(rows):
    pairs = list(results.peers(rows))
    for name, times in rows.items():
        line = f"{name:<56} {results.shown(statistics.median(times)):>10}"
        for mine, peer in pairs:
            if peer == name:
                middle, low, high = results.ratio(rows[mine], times)
                line += f"   ours takes {middle:.2f} of it ({low:.2f} to {high:.2f})"
        yield line.rstrip()


def measure(wanted):
    """(title, lines) of each program, and what was measured."""
    tables, measured = [], {}
    for program in programs():
        name = os.path.basename(program)
        try:
            if has_table_of_its_own(program):
                lines = output_of(program).splitlines() if re.search(wanted, name) else []
            else:
                rows = rows_of(program, wanted)
                measured.update({(name, row): times for row, times in rows.items()})
                lines = list(lines_of(rows))
        except (RuntimeError, subprocess.CalledProcessError):
            sys.exit(f"bench: {name} fails, or prints no row")
        if lines:
            tables.append((name, lines))
            print("\n== " + name, *lines, sep="\n", flush=True)
    for name, script, title in (
            ("batch", "batch-bench.sh", "batch of pictures, whole programs"),
            ("thumbnails", "thumbnail-bench.sh", "thumbnails, whole programs")):
        if re.search(wanted, name):
            lines = output_of(os.path.join(ROOT, "scripts", script)).splitlines()
            tables.append((title, lines))
            print("\n== " + title, *lines, sep="\n", flush=True)
    return tables, measured


def machine():
    with open("/proc/cpuinfo") as file:
        model = re.search("model name\\s*: (.*)", file.read())
    with open("/etc/os-release") as file:
        system = re.search('PRETTY_NAME="(.*)"', file.read())
    compiler = output_of("c++", "--version").splitlines()[0]
    return (f"{model.group(1) if model else 'an unnamed processor'}, {os.cpu_count()} processors, "
            f"{system.group(1) if system else 'Linux'}, {compiler}, {datetime.date.today()}")


def write_page(tables):
    begin, end = "<!-- measured -->\n", "<!-- end -->\n"
    with open(PAGE) as file:
        before, rest = file.read().split(begin)
    text = f"Measured on: {machine()}.\n"
    for title, lines in tables:
        text += f"\n**{title}**\n\n```\n" + "\n".join(lines) + "\n```\n"
    with open(PAGE, "w") as file:
        file.write(before + begin + "\n" + text + "\n" + end + rest.split(end)[1])


def main():
    wanted = sys.argv[1] if len(sys.argv) > 1 else "."
    tables, measured = measure(wanted)
    results.save(os.path.join(TREE, "results.csv"), measured)
    if wanted == ".":
        write_page(tables)


main()
