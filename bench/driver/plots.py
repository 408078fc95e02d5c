# SPDX-License-Identifier: MIT
"""Which charts are drawn of the results."""
from driver import plan, svg, tables

BIG_PAYLOAD_BYTES = 500_000  # below it, what a call adds is not the payload's doing


def drawn(results):
    """The contenders that were measured."""
    keys = results[plan.SCALAR.key]["contenders"]
    return [contender for contender in plan.CONTENDERS if contender.key in keys]


def entries(contenders):
    return [(contender.title, contender.colour) for contender in contenders]


def times(value):
    return f"{value:g}×"


def ratio_chart(results, metric, title):
    contenders = drawn(results)
    rows = []
    for subject in plan.WORKLOADS:
        measured = results[subject.key]["contenders"]
        points = [
            (one.title, measured[one.key]["to_f1"]["call"][metric]["median"])
            for one in contenders
        ]
        rows.append((subject.title, points))
    return svg.dot_rows(
        title,
        "Ratio to a bare libcurl POST of the same bytes (F1); left is better",
        rows,
        entries(contenders),
        times,
        reference=1,
    )


def memory_chart(results):
    contenders = drawn(results)
    rows = []
    for subject in plan.WORKLOADS:
        result = results[subject.key]
        payload = result["payload_bytes"]
        if payload < BIG_PAYLOAD_BYTES or subject.workload.startswith("first"):
            continue
        points = [
            (one.title, result["contenders"][one.key]["peak_added_bytes"] / payload)
            for one in contenders
        ]
        rows.append((subject.title, points))
    return svg.dot_rows(
        "Peak memory that a call adds",
        "Ratio to the bytes of the array's elements; left is better",
        rows,
        entries(contenders),
        times,
    )


def growth_chart(results, subjects, title, subtitle, x_of, x_label, metric, y_text):
    series = []
    for contender in drawn(results):
        points = []
        for subject in subjects:
            measured = results[subject.key]["contenders"][contender.key]["call"]
            points.append((x_of(subject), measured[metric]["median"]))
        series.append((contender.title, contender.colour, points))
    x_ticks = [(x_of(subject), x_label(subject)) for subject in subjects]
    return svg.lines(title, subtitle, series, x_ticks, y_text)


def payload_label(count):
    for unit, size in (("MB", 1e6), ("kB", 1e3)):
        if count >= size:
            return f"{count / size:g} {unit}"
    return f"{count} B"


def charts(results):
    """SVG texts by file name."""

    def payload(subject):
        return results[subject.key]["payload_bytes"]

    def cells(subject):
        return int(subject.workload.removeprefix("cell-").removesuffix("x1"))

    return {
        "cpu.svg": ratio_chart(results, "cpu_ns", "Client CPU per call"),
        "time.svg": ratio_chart(results, "time_ns", "Time per call"),
        "memory.svg": memory_chart(results),
        "growth-doubles.svg": growth_chart(
            results,
            plan.DOUBLE_GROWTH,
            "Doubles: client CPU per call",
            "By the bytes of the matrix; lower is better",
            payload,
            lambda subject: payload_label(payload(subject)),
            "cpu_ns",
            tables.duration,
        ),
        "growth-cells.svg": growth_chart(
            results,
            plan.CELL_GROWTH,
            "Cells: client CPU per call",
            "By the number of cells, each a 1×1 double; lower is better",
            cells,
            lambda subject: f"{cells(subject):,}",
            "cpu_ns",
            tables.duration,
        ),
        "contexts.svg": growth_chart(
            results,
            plan.CONTEXT_GROWTH,
            "Contexts on threads: calls per second, doubles 100×100",
            "By the number of contexts, each on a thread of its own; higher is better",
            lambda subject: subject.threads,
            lambda subject: str(subject.threads),
            "calls_per_second",
            lambda value: f"{value:,.0f}",
        ),
    }
