# SPDX-License-Identifier: MIT
"""Tries every promise of the library, for as long as is asked, and reports."""
import argparse
import concurrent.futures
import pathlib
import sys
import time

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1]))

from driver import plan, tasks  # noqa: E402

LANES = 2
HEAD = "| # | promise | asked | reached | findings | time |\n|---|---|---|---|---|---|\n"


def read_arguments():
    parser = argparse.ArgumentParser(prog="scripts/torture", description=__doc__)
    length = parser.add_mutually_exclusive_group()
    length.add_argument(
        "--commit", action="store_true", help="about 10 minutes; the usual"
    )
    length.add_argument("--night", action="store_true", help="hours")
    length.add_argument("--minutes", type=int, metavar="N", help="about N minutes")
    parser.add_argument("--only", metavar="3,5", help="the promises of these numbers")
    parser.add_argument("--seed", type=int, default=1)
    # What scripts/torture has to build: lines of a preset and a target.
    parser.add_argument("--builds", action="store_true", help=argparse.SUPPRESS)
    return parser.parse_args()


def chosen_promises(arguments):
    if not arguments.only:
        return plan.PROMISES
    numbers = {int(part) for part in arguments.only.split(",")}
    unknown = numbers - {promise.number for promise in plan.PROMISES}
    if unknown:
        sys.exit(f"There is no promise {min(unknown)}.")
    return [promise for promise in plan.PROMISES if promise.number in numbers]


def tier_of(arguments, promises):
    if arguments.minutes:
        numbers = [promise.number for promise in promises]
        return plan.timed(arguments.minutes, numbers, arguments.seed)
    if arguments.night:
        return plan.Tier("night", plan.NIGHT_COUNTS, arguments.seed)
    return plan.Tier("commit", plan.COMMIT_COUNTS, arguments.seed)


def run_all(runner, work):
    """Wide tasks one by one, then the others in lanes, as they come."""
    outcomes = [runner.run(task) for task in work if task.wide]
    with concurrent.futures.ThreadPoolExecutor(LANES) as lanes:
        outcomes += lanes.map(runner.run, [task for task in work if not task.wide])
    return outcomes


def row(promise, tier, outcomes):
    reached = [outcome.reached for outcome in outcomes]
    findings = sum(len(one.findings) for one in reached)
    seconds = sum(outcome.seconds for outcome in outcomes)
    cells = (
        promise.number, promise.text, promise.asked(tier), promise.summary(reached),
        findings or "none", f"{seconds:.0f} s",
    )  # fmt: skip
    return "| " + " | ".join(map(str, cells)) + " |\n"


def main():
    arguments = read_arguments()
    promises = chosen_promises(arguments)
    if arguments.builds:
        for build in sorted({build for promise in promises for build in promise.builds}):
            print(*build)
        return 0
    folder = plan.BUILD / "torture"
    folder.mkdir(parents=True, exist_ok=True)
    tier = tier_of(arguments, promises)
    work = {promise.number: promise.tasks(tier) for promise in promises}
    runner = tasks.Runner(folder)
    for promise in promises:
        if promise.prepare:
            name = f"{promise.number}-{promise.prepare[0].stem}"
            runner.prepare(name, promise.prepare, plan.COMMIT_LIMIT_SECONDS)
    start = time.monotonic()
    try:
        outcomes = run_all(runner, [task for some in work.values() for task in some])
    except BaseException:
        runner.stop()
        raise
    by_task = {outcome.task.name: outcome for outcome in outcomes}
    table = HEAD
    for promise in promises:
        own = [by_task[task.name] for task in work[promise.number]]
        table += row(promise, tier, own)
    minutes = (time.monotonic() - start) / 60
    table += f"\nSeed {arguments.seed}, {minutes:.1f} minutes on {LANES} cores.\n"
    (folder / "report.md").write_text(table)
    print(f"\n{table}\nKept with all output in {folder}.")
    return 1 if any(outcome.reached.findings for outcome in outcomes) else 0


if __name__ == "__main__":
    sys.exit(main())
