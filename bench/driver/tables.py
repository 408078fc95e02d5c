# SPDX-License-Identifier: MIT
"""The results as Markdown."""
from driver import plan

TITLES = {contender.key: contender.title for contender in plan.CONTENDERS}
MODE_TITLES = {"call": "Call", "read": "Call, and read everything that came back"}


def table(header, rows):
    lines = ["| " + " | ".join(header) + " |", "|" + "---|" * len(header)]
    lines += ["| " + " | ".join(row) + " |" for row in rows]
    return "\n".join(lines)


def duration(ns):
    for unit, size in (("s", 1e9), ("ms", 1e6), ("µs", 1e3)):
        if ns >= size:
            return f"{ns / size:.3g} {unit}"
    return f"{ns:.0f} ns"


def megabytes(count):
    return f"{count / 1e6:.1f} MB"


def number(value):
    decimals = 0 if value >= 100 else 1 if value >= 10 else 2
    return f"{value:,.{decimals}f}"


METRIC_TEXTS = {"cpu_ns": duration, "calls_per_second": number}


def with_spread(values):
    middle, low, high = (number(values[name]) for name in ("median", "q1", "q3"))
    return f"{middle} ({low}–{high})"


def verdict(measured, limit):
    return "met" if measured <= limit else "**missed**"


def limit_text(limit, aim, unit=""):
    return f"≤ {limit:g}{unit}" + (f", aim at {aim:g}{unit}" if aim else "")


def ratio_cells(limit, aim, ratios):
    if limit is None:
        return ["–", "–", "–", "–"]
    cpu = ratios["call"]["cpu_ns"]
    time = ratios["call"]["time_ns"]
    return [
        limit_text(limit, aim),
        with_spread(cpu),
        with_spread(time),
        verdict(cpu["median"], limit),
    ]


def memory_cells(goal, result):
    added = result["contenders"][plan.LIBRARY]["peak_added_bytes"]
    if goal.payloads is not None:
        payloads = added / result["payload_bytes"]
        measured = f"{payloads:.2f} payloads"
        return [
            limit_text(goal.payloads, None, " payloads"),
            measured,
            verdict(payloads, goal.payloads),
        ]
    if goal.megabytes is not None:
        return [
            limit_text(goal.megabytes, goal.megabytes_aim, " MB"),
            megabytes(added),
            verdict(added / 1e6, goal.megabytes),
        ]
    return ["–", "–", "–"]


def goals_table(results):
    """The ratio of client CPU per call decides; that of the time stands beside it."""
    header = ["workload"]
    header += ["to F1", "CPU", "time", ""]
    header += ["to gRPC", "CPU", "time", ""]
    header += ["peak memory added", "measured", ""]
    rows = []
    for goal in plan.GOALS:
        result = results[goal.subject.key]
        row = [goal.subject.title]
        row += ratio_cells(
            goal.to_f1, goal.f1_aim, result["contenders"][plan.LIBRARY]["to_f1"]
        )
        grpc = results[(goal.grpc_subject or goal.subject).key]["contenders"].get("grpc")
        row += ratio_cells(
            goal.to_grpc if grpc else None,
            goal.grpc_aim,
            grpc and grpc["library_to_this"],
        )
        rows.append(row + memory_cells(goal, result))
    return table(header, rows)


def subject_table(result, mode):
    header = ["", "time", "calls/s", "client CPU", "page faults", "peak memory added"]
    header += ["time to F1", "CPU to F1", "memory to F1"]
    header += ["library's time to it", "library's CPU to it", "library's memory to it"]
    rows = []
    for key, one in result["contenders"].items():
        measured, to_f1, library = one[mode], one["to_f1"], one["library_to_this"]
        rows.append(
            [
                TITLES[key],
                duration(measured["time_ns"]["median"]),
                number(measured["calls_per_second"]["median"]),
                duration(measured["cpu_ns"]["median"]),
                number(measured["page_faults"]["median"]),
                megabytes(one["peak_added_bytes"]),
                with_spread(to_f1[mode]["time_ns"]),
                with_spread(to_f1[mode]["cpu_ns"]),
                number(to_f1["peak_added_bytes"]),
                with_spread(library[mode]["time_ns"]),
                with_spread(library[mode]["cpu_ns"]),
                number(library["peak_added_bytes"]),
            ]
        )
    return table(header, rows)


def growth_table(growth, results):
    write = METRIC_TEXTS[growth.metric]
    keys = list(results[growth.points[0][2].key]["contenders"])
    rows = []
    for _, label, subject in growth.points:
        contenders = results[subject.key]["contenders"]
        medians = [contenders[key]["call"][growth.metric]["median"] for key in keys]
        rows.append([label] + [write(value) for value in medians])
    return table([""] + [TITLES[key] for key in keys], rows)


def doublings_table(doublings):
    keys = (plan.LIBRARY, plan.BASE)
    metrics = ("cpu_ns", "time_ns")
    header = [f"{TITLES[key]}, {name}" for key in keys for name in ("CPU", "time")]
    rows = [
        [one["title"]] + [with_spread(one[key][name]) for key in keys for name in metrics]
        for one in doublings
    ]
    return table([""] + header, rows)


def micro_table(benchmarks):
    rows = [
        [one["name"], duration(one["cpu_time"])]
        for one in benchmarks
        if one["run_type"] == "iteration"
    ]
    return table(["", "CPU"], rows)


def instructions_table(counted, kept):
    rows = []
    for name, count in counted.items():
        before = kept.get(name)
        change = f"{100 * (count / before - 1):+.2f} %" if before else "new"
        rows.append([name, f"{count:,}", f"{before:,}" if before else "–", change])
    return table(["scenario", "instructions", "kept", "change"], rows)


def report(machine, results, doublings, micro, instructions):
    """`micro` and the pair `instructions` are null when they could not be taken."""
    parts = [
        "# Measurements",
        f"{machine}. Medians of rounds in which the contenders take turns, with their "
        "quartiles in parentheses. Ratios compare rounds beside each other.",
        "## Goals",
        "Ratios of the library's client CPU per call decide.",
        goals_table(results),
        "## Workloads",
        "![Client CPU per call to F1](cpu.svg)",
        "![Time per call to F1](time.svg)",
        "![Peak memory added](memory.svg)",
    ]
    for subject in plan.WORKLOADS:
        for mode, title in MODE_TITLES.items():
            parts.append(f"### {subject.title}: {title.lower()}")
            parts.append(subject_table(results[subject.key], mode))
    parts += ["## Growth"]
    for growth in plan.GROWTHS:
        parts.append(f"### {growth.title}")
        parts.append(f"![{growth.title}]({growth.name}.svg)")
        parts.append(growth_table(growth, results))
    parts += ["### Cost of twice as much", doublings_table(doublings)]
    if micro:
        parts += ["## Parts of a call, without transport", micro_table(micro)]
    if instructions:
        parts += ["## Instructions", instructions_table(*instructions)]
    return "\n\n".join(parts) + "\n"
