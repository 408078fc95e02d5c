# SPDX-License-Identifier: MIT
"""Medians, spreads and ratios of what was measured, as plain data."""
import statistics

from driver import plan

METRICS = ("time_ns", "cpu_ns", "calls_per_second", "page_faults")
RATIO_METRICS = ("time_ns", "cpu_ns")


def spread(values):
    """Median and quartiles."""
    if len(values) == 1:
        return {"median": values[0], "q1": values[0], "q3": values[0]}
    q1, median, q3 = statistics.quantiles(values, n=4, method="inclusive")
    return {"median": median, "q1": q1, "q3": q3}


def ratio(rounds, to_rounds, metric):
    """Each round is compared with the other contender's round beside it."""
    pairs = zip(rounds, to_rounds)
    return spread([one[metric] / max(other[metric], 1) for one, other in pairs])


def ratios(runners, key, to_key, modes):
    runner, other = runners[key], runners[to_key]
    result = {
        mode: {
            metric: ratio(runner.rounds[mode], other.rounds[mode], metric)
            for metric in RATIO_METRICS
        }
        for mode in modes
    }
    result["peak_added_bytes"] = runner.peak_added_bytes / max(other.peak_added_bytes, 1)
    return result


def summarise_doublings(subjects, series):
    """How each subject's rounds compare with those of the one before it."""
    return [
        {
            "title": f"{subjects[i - 1].title} → {subjects[i].title}",
            **{
                key: {
                    metric: ratio(
                        runners[i].rounds["call"], runners[i - 1].rounds["call"], metric
                    )
                    for metric in RATIO_METRICS
                }
                for key, runners in series.items()
            },
        }
        for i in range(1, len(subjects))
    ]


def summarise(subject, runners, modes):
    contenders = {}
    for key, runner in runners.items():
        contenders[key] = {
            "peak_added_bytes": runner.peak_added_bytes,
            **{
                mode: {
                    metric: spread([one[metric] for one in runner.rounds[mode]])
                    for metric in METRICS
                }
                for mode in modes
            },
            "to_f1": ratios(runners, key, plan.BASE, modes),
            "library_to_this": ratios(runners, plan.LIBRARY, key, modes),
        }
    return {
        "title": subject.title,
        "workload": subject.workload,
        "threads": subject.threads,
        "one_core": subject.one_core,
        "payload_bytes": next(iter(runners.values())).payload_bytes,
        "contenders": contenders,
    }
