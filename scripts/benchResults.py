"""Results of benchmarks: repetitions of named rows, medians, and ratios of them with their confidence."""

import csv
import random
import re
import statistics

OURS = re.compile("ours|zorvan", re.IGNORECASE)
NANOSECONDS = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}


def from_google_benchmark(lines):
    """{name: [nanoseconds of each repetition]} of what a program prints as CSV."""
    rows = {}
    for row in csv.reader(line for line in lines if line.startswith('"')):
        name, time, unit = row[0], row[2], row[4]
        if re.search("_(mean|median|stddev|cv)$", name) or not time:
            continue
        rows.setdefault(name, []).append(float(time) * NANOSECONDS[unit])
    return rows


def save(path, results):
    with open(path, "w", newline="") as file:
        csv.writer(file).writerows([program, name, *times] for (program, name), times in results.items())


def load(path):
    with open(path, newline="") as file:
        return {(row[0], row[1]): [float(time) for time in row[2:]] for row in csv.reader(file)}


def shown(nanoseconds):
    for unit in ("s", "ms", "us"):
        if nanoseconds >= NANOSECONDS[unit]:
            return f"{nanoseconds / NANOSECONDS[unit]:.3g} {unit}"
    return f"{nanoseconds:.3g} ns"


def ratio(times, others, draws=2000):
    """The ratio of the medians, and the ends of its 95 % confidence interval by drawing again from what was measured."""
    generator = random.Random(1)

    def drawn(values):
        return statistics.median(generator.choices(values, k=len(values)))

    ratios = sorted(drawn(times) / drawn(others) for _ in range(draws))
    return (statistics.median(times) / statistics.median(others), ratios[draws * 25 // 1000],
            ratios[-draws * 25 // 1000])


def peers(rows):
    """(ours, peer) for each two names that differ only in what stands for "ours": unionOf<Ours> and
    unionOf<BoostIcl>, ours/hull and peer/hull."""
    for mine in rows:
        match = OURS.search(mine)
        if not match:
            continue
        head, tail = mine[:match.start()], mine[match.end():]
        for peer in rows:
            if (peer != mine and len(peer) >= len(head) + len(tail) and peer.startswith(head)
                    and peer.endswith(tail)):
                yield mine, peer
