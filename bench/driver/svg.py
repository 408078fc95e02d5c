# SPDX-License-Identifier: MIT
"""Two kinds of charts in plain SVG: rows of dots, and lines."""
import html
import math

FONT = "font-family='system-ui, sans-serif'"
INK = "#222222"
SOFT = "#666666"
GRID = "#e3e3e3"


def text(x, y, content, size=12, colour=INK, anchor="start", weight="normal"):
    return (
        f"<text x='{x:.1f}' y='{y:.1f}' {FONT} font-size='{size}' fill='{colour}' "
        f"text-anchor='{anchor}' font-weight='{weight}'>{html.escape(content)}</text>"
    )


def line(x1, y1, x2, y2, colour=GRID, width=1.0):
    return (
        f"<line x1='{x1:.1f}' y1='{y1:.1f}' x2='{x2:.1f}' y2='{y2:.1f}' "
        f"stroke='{colour}' stroke-width='{width}'/>"
    )


def dot(x, y, colour, radius=4.5):
    return (
        f"<circle cx='{x:.1f}' cy='{y:.1f}' r='{radius}' fill='{colour}' "
        "stroke='white' stroke-width='1'/>"
    )


def document(width, height, title, subtitle, shapes):
    head = (
        f"<svg xmlns='http://www.w3.org/2000/svg' width='{width}' height='{height}' "
        f"viewBox='0 0 {width} {height}' role='img'>"
    )
    return "\n".join(
        [
            head,
            f"<title>{html.escape(title)}</title>",
            f"<rect width='{width}' height='{height}' fill='white'/>",
            text(20, 28, title, size=16, weight="600"),
            text(20, 47, subtitle, colour=SOFT),
            *shapes,
            "</svg>\n",
        ]
    )


class LogScale:
    """Places positive values between two pixels; the ends are the outer ticks."""

    def __init__(self, values, start, end):
        self._low = math.floor(math.log10(min(values)) + 1e-9)
        self._high = max(math.ceil(math.log10(max(values)) - 1e-9), self._low + 1)
        self._start, self._end = start, end

    def place(self, value):
        share = (math.log10(value) - self._low) / (self._high - self._low)
        return self._start + share * (self._end - self._start)

    def ticks(self):
        return [10.0**power for power in range(self._low, self._high + 1)]


def legend(entries, x, y):
    shapes = []
    for name, colour in entries:
        shapes += [dot(x + 5, y - 4, colour), text(x + 14, y, name)]
        x += 34 + 6.6 * len(name)
    return shapes


def dot_rows(title, subtitle, rows, entries, tick_text, reference=None):
    """`rows` are pairs of a label and a list of (entry name, value); `entries` are pairs
    of name and colour; `reference` is a value to be marked."""
    left, right, top, step = 190, 30, 96, 30
    width, bottom = 900, top + step * len(rows)
    colours = dict(entries)
    values = [value for _, points in rows for _, value in points]
    scale = LogScale(values + ([reference] if reference else []), left, width - right)
    shapes = legend(entries, 20, 74)
    for tick in scale.ticks():
        x = scale.place(tick)
        shapes.append(line(x, top - 8, x, bottom))
        shapes.append(text(x, bottom + 18, tick_text(tick), 11, SOFT, "middle"))
    if reference:
        x = scale.place(reference)
        shapes.append(line(x, top - 8, x, bottom, SOFT, 1.5))
    for row, (label, points) in enumerate(rows):
        y = top + step * row + step / 2
        shapes.append(line(left, y, width - right, y))
        shapes.append(text(left - 12, y + 4, label, anchor="end"))
        shapes += [dot(scale.place(value), y, colours[name]) for name, value in points]
    return document(width, bottom + 36, title, subtitle, shapes)


def apart(positions, distance):
    """Moves label positions down until none overlaps the one above it."""
    placed = []
    for position in sorted(positions):
        placed.append(max(position, placed[-1] + distance) if placed else position)
    return placed


def lines(title, subtitle, series, x_ticks, y_tick_text):
    """`series` are triples of name, colour and points (x, y); `x_ticks` are pairs of x
    and label. Both scales are logarithmic."""
    left, right, top, bottom, width, height = 80, 170, 74, 430, 900, 480
    xs = [x for x, _ in x_ticks]
    low, high = math.log(min(xs)), math.log(max(xs))

    def place_x(x):
        return left + (math.log(x) - low) / (high - low) * (width - right - left)

    scale = LogScale([y for _, _, points in series for _, y in points], bottom, top)
    shapes = []
    for tick in scale.ticks():
        y = scale.place(tick)
        shapes.append(line(left, y, width - right, y))
        shapes.append(text(left - 10, y + 4, y_tick_text(tick), 11, SOFT, "end"))
    for x, label in x_ticks:
        shapes.append(text(place_x(x), bottom + 20, label, 11, SOFT, "middle"))
    for _, colour, points in series:
        path = " ".join(f"{place_x(x):.1f},{scale.place(y):.1f}" for x, y in points)
        shapes.append(
            f"<polyline points='{path}' fill='none' stroke='{colour}' stroke-width='2'/>"
        )
        shapes += [dot(place_x(x), scale.place(y), colour, 3.5) for x, y in points]
    ends = sorted(
        (scale.place(points[-1][1]), name, colour) for name, colour, points in series
    )
    for y, (_, name, colour) in zip(apart([end[0] for end in ends], 16), ends):
        shapes.append(text(width - right + 12, y + 4, name, colour=colour, weight="600"))
    return document(width, height, title, subtitle, shapes)
