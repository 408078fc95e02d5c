# SPDX-License-Identifier: MIT
"""Which charts are drawn of the results."""
from driver import plan, svg, tables

BIG_PAYLOAD_BYTES = 500_000  # below it, what a call adds is not the payload's doing


def drawn(results):
    """The contenders that were measured; the library comes last, above the others."""
    keys = results[plan.SCALAR.key]["contenders"]
    contenders = [contender for contender in plan.CONTENDERS if contender.key in keys]
    return sorted(contenders, key=lambda contender: contender.key == plan.LIBRARY)


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


def growth_chart(results, growth):
    series = []
    for contender in drawn(results):
        points = []
        for quantity, _, subject in growth.points:
            measured = results[subject.key]["contenders"][contender.key]["call"]
            points.append((quantity, measured[growth.metric]["median"]))
        series.append((contender.title, contender.colour, points))
    x_ticks = [(quantity, label) for quantity, label, _ in growth.points]
    write = tables.METRIC_TEXTS[growth.metric]
    return svg.lines(growth.title, growth.subtitle, series, x_ticks, write)


def charts(results):
    """SVG texts by name."""
    return {
        "cpu": ratio_chart(results, "cpu_ns", "Client CPU per call"),
        "time": ratio_chart(results, "time_ns", "Time per call"),
        "memory": memory_chart(results),
        **{growth.name: growth_chart(results, growth) for growth in plan.GROWTHS},
    }
