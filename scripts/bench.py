"""bench.py [FILTER]: runs the benchmarks whose name matches FILTER (a regular expression), ours beside their
peers, then whole programs that shrink pictures (those named batch and thumbnails), then how times grow with sizes
(growth), drawn into build/bench/growth.svg. Prints medians and ratios.

Keeps what was measured in build/bench/results.csv, for bench-compare; without a filter, puts the table
into docs/performance.md as well. Fails when a program does, when one has a benchmark of that name and
prints no row, when the filter names nothing, and when a time grows faster than n log n."""

import datetime
import os
import re
import statistics
import subprocess
import sys

import benchResults as results
import growth

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
TREE = os.path.join(ROOT, "build/bench")
PAGE = os.path.join(ROOT, "docs/performance.md")
REPETITIONS = 9
GROWTH = "growth-bench"
BATCH = "bench-batch-export"  # that scripts/batch-bench.sh measures


def output_of(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True,
                          check=True).stdout


def programs():
    for folder, folders, files in os.walk(os.path.join(TREE, "bench")):
        folders[:] = sorted(name for name in folders if name != "CMakeFiles")
        for name in sorted(files):
            path = os.path.join(folder, name)
            if os.access(path, os.X_OK) and not name.endswith(".so") and name not in (GROWTH, BATCH):
                yield path


def has_table_of_its_own(program):
    return "benchmark::RunSpecifiedBenchmarks" not in output_of("nm", "-DC", program)


def rows_of(program, wanted, repetitions=REPETITIONS, least_time=0.1):
    """The rows of a program; none when the filter leaves all of its benchmarks out."""
    names = output_of(program, "--benchmark_list_tests", "--benchmark_filter=" + wanted).strip()
    if not names:
        return {}
    # Interleaved, so that a noisy moment of the machine falls on ours and on the peer alike.
    lines = output_of(program, "--benchmark_filter=" + wanted, f"--benchmark_repetitions={repetitions}",
                      "--benchmark_enable_random_interleaving=true", f"--benchmark_min_time={least_time}",
                      "--benchmark_format=csv").splitlines()
    rows = results.from_google_benchmark(lines)
    if missing := set(names.splitlines()) - rows.keys():
        raise RuntimeError("no row of " + ", ".join(sorted(missing)))
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


def measure_program(program, wanted, measured):
    """The lines of a program; what Google Benchmark measured goes into `measured`."""
    name = os.path.basename(program)
    if has_table_of_its_own(program):
        if not re.search(wanted, name):
            return []
        lines = output_of(program).splitlines()
        if not lines:
            raise RuntimeError("no row")
        return lines
    rows = rows_of(program, wanted)
    measured.update({(name, row): times for row, times in rows.items()})
    return list(lines_of(rows))


def measure_growth():
    rows = rows_of(os.path.join(TREE, "bench/growth", GROWTH), ".", repetitions=3, least_time=0.02)
    with open(os.path.join(TREE, "growth.svg"), "w") as file:
        file.write(growth.chart(rows))
    return growth.judge(rows)


def measure(wanted):
    """(title, lines) of each program, what was measured, and what grows too fast."""
    tables, measured, too_fast = [], {}, []

    def table(title, lines):
        if lines:
            tables.append((title, lines))
            print("\n== " + title, *lines, sep="\n", flush=True)

    title = None
    try:
        for program in programs():
            title = os.path.basename(program)
            table(title, measure_program(program, wanted, measured))
        for name, script, title in (
                ("batch", "batch-bench.sh", "batch of pictures, whole programs"),
                ("thumbnails", "thumbnail-bench.sh", "thumbnails, whole programs")):
            if re.search(wanted, name):
                table(title, output_of(os.path.join(ROOT, "scripts", script)).splitlines())
        title = "how times grow with sizes"
        if re.search(wanted, "growth"):
            lines, too_fast = measure_growth()
            table(title, lines)
    except (OSError, RuntimeError, subprocess.CalledProcessError) as error:
        sys.exit(f"bench: {title} fails, or prints no row: {error}")
    if not tables:
        sys.exit("bench: nothing is named like that")
    return tables, measured, too_fast


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
    tables, measured, too_fast = measure(wanted)
    results.save(os.path.join(TREE, "results.csv"), measured)
    if wanted == ".":
        write_page(tables)
    if too_fast:
        sys.exit("bench: grows faster than n log n: " + ", ".join(too_fast))


main()
