"""How the time of what growth-bench measures grows with the size: the exponent of each row, a chart, and whether
one grows faster than sizes do when they are sorted."""

import math
import re
import statistics

# What lies about at random takes up to twenty times as long from memory as from the first cache, which a time may grow
# by beside n log n. Even over two decades of sizes a square is above that, and over four n^1.5 is.
CACHES = 20
COLOURS = ("#1b6ca8", "#c8553d", "#588157", "#8e5572", "#b58900", "#2a9d8f", "#6c757d", "#e76f51", "#264653",
           "#9b2226", "#5f0f40", "#3a86ff")


def series(rows):
    """{name: [(size, nanoseconds)]} of rows named "name/size", ascending; the least of the times is disturbed least."""
    found = {}
    for row, times in sorted(rows.items()):
        name, size = re.fullmatch(r"(.*)/(\d+)", row).groups()
        found.setdefault(name, []).append((int(size), min(times)))
    return {name: sorted(points) for name, points in found.items()}


def slope(xs, ys):
    """The exponent of a power through the points."""
    xs, ys = [math.log(x) for x in xs], [math.log(y) for y in ys]
    x, y = statistics.mean(xs), statistics.mean(ys)
    return sum((a - x) * (b - y) for a, b in zip(xs, ys)) / sum((a - x) ** 2 for a in xs)


def exponents(points):
    """Of the time, and the one that it may have: n log n between the same sizes, and what the caches add."""
    sizes = [size for size, _ in points]
    return (slope(sizes, [time for _, time in points]),
            slope(sizes, [size * math.log(size) for size in sizes])
            + math.log(CACHES) / math.log(sizes[-1] / sizes[0]))


def judge(rows):
    """(lines, names of those that grow too fast)"""
    lines, failing = [], []
    for name, points in series(rows).items():
        exponent, largest = exponents(points)
        if exponent > largest:
            failing.append(name)
        lines.append(f"{name:<44} n^{exponent:.2f} from {points[0][0]:,} to {points[-1][0]:,}"
                     + (f", TOO FAST: more than n^{largest:.2f}" if exponent > largest else ""))
    return lines, failing


def chart(rows):
    """Time against size as SVG, both as powers of ten, with a straight dashed line for n log n."""
    lines = series(rows)
    points = [point for line in lines.values() for point in line]
    low = [math.floor(math.log10(min(point[axis] for point in points))) for axis in (0, 1)]
    high = [math.ceil(math.log10(max(point[axis] for point in points))) for axis in (0, 1)]
    left, top, width, height = 70, 20, 560, 480

    def x(size):
        return left + width * (math.log10(size) - low[0]) / (high[0] - low[0])

    def y(time):
        return top + height * (high[1] - math.log10(time)) / (high[1] - low[1])

    def polyline(line, style):
        return f'<polyline fill="none" {style} points="' + " ".join(f"{x(a):.1f},{y(b):.1f}" for a, b in line) + '"/>'

    units = {0: "1 ns", 3: "1 µs", 6: "1 ms", 9: "1 s"}
    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" width="960" height="{top + height + 50}" '
             'font-family="sans-serif" font-size="12">', '<rect width="100%" height="100%" fill="white"/>']
    for power in range(low[0], high[0] + 1):
        parts.append(f'<path stroke="#ddd" d="M{x(10 ** power):.1f},{top}v{height}"/>'
                     f'<text text-anchor="middle" x="{x(10 ** power):.1f}" y="{top + height + 18}">'
                     f'{10 ** power:,}</text>')
    for power in range(low[1], high[1] + 1):
        parts.append(f'<path stroke="#ddd" d="M{left},{y(10 ** power):.1f}h{width}"/>')
        if power in units:
            parts.append(f'<text text-anchor="end" x="{left - 8}" y="{y(10 ** power) + 4:.1f}">{units[power]}</text>')
    sizes = [10 ** power for power in range(low[0], high[0] + 1)]
    per_step = 10 ** low[1] / (sizes[0] * math.log(sizes[0]))
    guide = [(n, per_step * n * math.log(n)) for n in sizes]
    parts.append(polyline([(n, time) for n, time in guide if time <= 10 ** high[1]],
                          'stroke="#999" stroke-dasharray="6 4"'))
    parts.append(f'<text x="{left + width + 20}" y="{top + 12}" fill="#777">- - -  n log n</text>')
    for i, (name, line) in enumerate(lines.items()):
        colour = COLOURS[i % len(COLOURS)]
        parts.append(polyline(line, f'stroke="{colour}" stroke-width="2"'))
        parts += [f'<circle cx="{x(a):.1f}" cy="{y(b):.1f}" r="3" fill="{colour}"/>' for a, b in line]
        parts.append(f'<text x="{left + width + 20}" y="{top + 36 + 20 * i}" fill="{colour}">{name}, '
                     f'n^{exponents(line)[0]:.2f}</text>')
    return "\n".join(parts) + "\n</svg>\n"
